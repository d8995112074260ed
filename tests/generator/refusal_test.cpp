// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "generator_run.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const std::string include_line = "#include \"dds_rmi.idl\"\n";

/// `text` begins on line 2.
std::string in_file(const std::string& text)
{
    return include_line + text + "\n";
}

/// `text` begins on line 4.
std::string in_module(const std::string& text, const std::string& line_2 = "")
{
    return in_file(line_2 + "\nmodule M {\n" + text + "\n};");
}

/// `text` begins on line 5.
std::string in_interface(const std::string& text, const std::string& line_2 = "")
{
    return in_module("local interface I : ::DDS_RMI::Services {\n" + text + "\n};", line_2);
}

struct Refusal
{
    const char* name;
    std::string text;
    int line;
    std::string reason;
};

void PrintTo(const Refusal& refusal, std::ostream* stream)
{
    *stream << refusal.name;
}

class RefusedInterfaceFile : public testing::TestWithParam<Refusal>
{
};

TEST_P(RefusedInterfaceFile, is_named_with_line_and_reason_and_nothing_is_written)
{
    const GeneratorRun run(GetParam().text);

    EXPECT_EQ(run.exit_code(), 1);
    EXPECT_THAT(run.errors(), HasSubstr(run.line(GetParam().line) + GetParam().reason + "\n"));
    EXPECT_THAT(run.files(), IsEmpty());
}

std::string name_of(const testing::TestParamInfo<Refusal>& info)
{
    return info.param.name;
}

const Refusal declarations[] = {
    {"file_without_interface", in_file("module M { typedef long Count; };"), 1,
     "the file declares no interface"},
    {"interface_outside_a_module", in_file("local interface I : ::DDS_RMI::Services { void f(); };"), 2,
     "interface 'I' is not in a module; declare it in one"},
    {"interface_that_is_not_local", in_module("\ninterface I { void f(); };"), 5,
     "interface 'I' is not local; write 'local interface'"},
    {"interface_that_extends_nothing", in_module("local interface I { void f(); };"), 4,
     "interface 'I' does not extend ::DDS_RMI::Services; write 'local interface I : ::DDS_RMI::Services'"},
    {"interface_that_extends_another",
     in_module(
         "local interface I : ::DDS_RMI::Services { void f(); };\nlocal interface J : I { void g(); };"),
     5, "interface 'J' extends ::M::I; repeat its operations, and extend only ::DDS_RMI::Services"},
    {"interface_that_extends_two",
     in_module("local interface I { void f(); };\nlocal interface J : ::DDS_RMI::Services, I { void g(); };"),
     5, "interface 'J' extends ::M::I; repeat its operations, and extend only ::DDS_RMI::Services"},
    {"interface_without_operations", in_module("local interface I : ::DDS_RMI::Services {};"), 4,
     "interface 'I' has no operation; declare one"},
    {"union", in_module("union U switch (long) { case 1: long x; };"), 4,
     "union 'U' is not supported; write a struct with an enum that says which member counts"},
    {"valuetype", in_module("valuetype V {};"), 4, "valuetype 'V' is not supported; write a struct"},
    {"boxed_value", in_module("valuetype V long;"), 4, "valuetype 'V' is not supported; write a struct"},
    {"native", in_module("native N;"), 4, "native 'N' is not supported; write a type that both sides know"},
    {"forward_struct", in_module("struct S;\nstruct S { long x; };"), 4,
     "struct 'S' is not supported; declare the struct itself before it is used"},
    {"struct_outside_a_module", in_file("\nstruct S { long x; };"), 3,
     "struct 'S' is not in a module; declare it in one"},
    {"enum_outside_a_module", in_file("\nenum E { one };"), 3,
     "enum 'E' is not in a module; declare it in one"},
    {"constant_outside_a_module", in_file("\nconst long c = 3;"), 3,
     "constant 'c' is not in a module; declare it in one"},
    {"typedef_outside_a_module", in_file("\ntypedef long Count;"), 3,
     "typedef 'Count' is not in a module; declare it in one"},
    {"wide_constant", in_module("const wstring c = L\"w\";"), 4,
     "constant 'c' is a wide string; write string, which takes UTF-8"},
    {"infinite_constant", in_module("const double c = 1e999;"), 4,
     "constant 'c' is beyond what its type can hold"},
    {"typedef_of_what_is_not_supported", in_module("\ntypedef fixed<5, 2> Amount;"), 5,
     "typedef 'Amount' is a fixed-point number; write a double, or a long long that counts the smallest "
     "unit"},
    {"struct_in_a_typedef", in_module("typedef struct S { long x; } T;"), 4,
     "struct 'S' is declared inside another declaration; declare it before"},
    {"struct_in_a_struct", in_module("struct S {\nstruct T { long x; } member; };"), 5,
     "struct 'T' is declared inside another declaration; declare it before"},
    {"struct_that_contains_itself", in_module("struct S { long x;\nsequence<S> children; };"), 5,
     "member 'children' of struct 'S' is the struct that it is in; write a sequence of all 'S', and in each "
     "the index of the one that it belongs to"},
    {"member_that_is_not_supported", in_module("struct S { long x;\nany y; };"), 5,
     "member 'y' of struct 'S' is an any; write the type that is meant, or a string that holds JSON"},
    {"exception_member_that_is_not_supported", in_module("exception E { long x;\nwchar y; };"), 5,
     "member 'y' of exception 'E' is a wide character; write string, which takes UTF-8"},
    {"vast_array", in_module("struct S { long x;\noctet y[64][65]; };"), 5,
     "member 'y' of struct 'S' is an array of 4160 elements; write a sequence for more than 4096"},
};

const Refusal members[] = {
    {"attribute", in_interface("attribute long speed;"), 5,
     "attribute 'speed' is not supported; declare operations that get and set it"},
    {"struct", in_interface("struct S { long x; };"), 5,
     "struct 'S' is declared in an interface; declare it in the module"},
    {"constant", in_interface("const long limit = 3;"), 5,
     "constant 'limit' is declared in an interface; declare it in the module"},
    {"exception", in_interface("exception Bad {};\nvoid f() raises (Bad);"), 5,
     "exception 'Bad' is declared in an interface; declare it in the module"},
    {"context", in_interface("void f() context (\"c\");"), 5,
     "operation 'f' has a context; write an in-argument"},
};

const std::string types_of_line_2 =
    "module Types { union Choice switch (long) { case 1: long x; }; typedef sequence<Choice> Choices; "
    "typedef fixed<5, 2> Amount; };";

Refusal argument_type(const char* name, const std::string& type, const std::string& objection)
{
    return {name, in_interface("void f(in long a,\n       out " + type + " b);", types_of_line_2), 6,
            "argument 'b' of operation 'f' is " + objection};
}

Refusal result_type(const char* name, const std::string& type, const std::string& objection)
{
    return {name, in_interface("void f();\n" + type + " g();", types_of_line_2), 6,
            "the result of operation 'g' is " + objection};
}

const Refusal types[] = {
    argument_type("fixed_point_number", "Types::Amount",
                  "a fixed-point number; write a double, or a long long that counts the smallest unit"),
    argument_type("wide_string", "wstring", "a wide string; write string, which takes UTF-8"),
    argument_type("wide_character", "wchar", "a wide character; write string, which takes UTF-8"),
    argument_type("long_double", "long double", "a long double; write double"),
    argument_type("any", "any", "an any; write the type that is meant, or a string that holds JSON"),
    argument_type("object", "Object", "an interface; write a string with the name of the service"),
    argument_type("interface", "::DDS_RMI::Services",
                  "an interface; write a string with the name of the service"),
    argument_type("union", "Types::Choice",
                  "a union; write a struct with an enum that says which member counts"),
    argument_type("sequence_of_unions", "Types::Choices",
                  "a union; write a struct with an enum that says which member counts"),
    argument_type("struct_of_another_file", "::DDS_RMI::Identification",
                  "declared in another file; declare 'Identification' in this one"),
    result_type("wide_string_result", "wstring", "a wide string; write string, which takes UTF-8"),
    result_type("struct_result_of_another_file", "::DDS_RMI::Identification",
                "declared in another file; declare 'Identification' in this one"),
};

const Refusal names[] = {
    {"cpp_keyword_as_operation", in_interface("void delete();"), 5,
     "the name of operation 'delete' is a word of C or C++; choose another"},
    {"cpp_keyword_as_argument", in_interface("void f(in long class);"), 5,
     "the name of argument 'class' is a word of C or C++; choose another"},
    {"cpp_keyword_as_module",
     in_file("module new { local interface I : ::DDS_RMI::Services { void f(); }; };"), 2,
     "the name of module 'new' is a word of C or C++; choose another"},
    {"c_keyword", in_interface("void f(in long restrict);"), 5,
     "the name of argument 'restrict' is a word of C or C++; choose another"},
    {"c_macro", in_interface("void f(in long errno);"), 5,
     "the name of argument 'errno' is a word of C or C++; choose another"},
    {"c_library_macro", in_module("enum State { READY,\nEBUSY };"), 5,
     "the name of enumerator 'EBUSY' is a macro of the C library; choose another"},
    {"cpp_keyword_as_struct", in_module("struct template { long x; };"), 4,
     "the name of struct 'template' is a word of C or C++; choose another"},
    {"cpp_keyword_as_member", in_module("struct S { long x;\nlong delete; };"), 5,
     "the name of member 'delete' is a word of C or C++; choose another"},
    {"member_of_every_exception", in_module("exception E { long x;\nstring what; };"), 5,
     "member 'what' of exception 'E' has the name of a member of every exception; choose another"},
    {"struct_named_as_a_class",
     in_module("local interface I : ::DDS_RMI::Services { void f(); };\nstruct IInterfaceProxy { long x; };"),
     4, "'M::IInterfaceProxy' and interface 'M::I' would both be given the name 'M::IInterfaceProxy'"},
    {"struct_named_as_a_codec",
     in_module("struct A { long x; };\nstruct A_Codec { long x; };\n"
               "local interface I : ::DDS_RMI::Services { void f(); };"),
     5, "'M::A' and 'M::A_Codec' would both be given the name 'M::A_Codec'"},
    {"constant_named_as_a_scope_of_generated_code",
     in_module("const long rmi = 1;\nlocal interface I : ::DDS_RMI::Services { void f(); };"), 5,
     "'M::rmi' and generated code would both be given the name 'M::rmi'"},
    {"needed_scope", in_file("module std { local interface I : ::DDS_RMI::Services { void f(); }; };"), 2,
     "the name of module 'std' is a scope that the generated code needs; choose another"},
    {"member_of_the_base", in_interface("void f();\nvoid setTimeout();"), 6,
     "operation 'setTimeout' has the name of a member of the proxy's base; choose another"},
    {"asynchronous_form_of_another", in_interface("void f();\nvoid async_f();"), 6,
     "operation 'M::I::f' and operation 'M::I::async_f' would both be given the name 'M::I::async_f'"},
    {"same_reply_handler",
     in_module("local interface I : ::DDS_RMI::Services { void a_b(); };\n"
               "local interface I_a : ::DDS_RMI::Services { void b(); };"),
     5,
     "operation 'M::I::a_b' and operation 'M::I_a::b' would both be given the name 'M::I_a_b_Reply_Handler'"},
    {"same_topics",
     in_file("module A { local interface B__C : ::DDS_RMI::Services { void f(); }; };\n"
             "module A__B { local interface C : ::DDS_RMI::Services { void f(); }; };"),
     3,
     "interface 'A::B__C' and interface 'A__B::C' would both be given the name "
     "'topic___A__B__C__request'"},
    {"argument_named_as_a_class", in_interface("void f(in long I_f_Reply_Handler);"), 5,
     "argument 'I_f_Reply_Handler' of operation 'f' has the name of generated code; choose another"},
    {"operation_named_as_a_class", in_interface("void IInterface();"), 5,
     "operation 'IInterface' has the name of generated code; choose another"},
    {"overlong_topic",
     in_module("local interface " + std::string(240, 'x') + " : ::DDS_RMI::Services { void f(); };"), 4,
     "the topic of interface 'M::" + std::string(240, 'x') +
         "' would have a name of 260 characters; DDS allows 255"},
};

INSTANTIATE_TEST_SUITE_P(declaration, RefusedInterfaceFile, testing::ValuesIn(declarations), name_of);
INSTANTIATE_TEST_SUITE_P(member, RefusedInterfaceFile, testing::ValuesIn(members), name_of);
INSTANTIATE_TEST_SUITE_P(type, RefusedInterfaceFile, testing::ValuesIn(types), name_of);
INSTANTIATE_TEST_SUITE_P(name, RefusedInterfaceFile, testing::ValuesIn(names), name_of);

TEST(FaultyInterfaceFile, is_reported_with_all_its_faults_in_the_order_of_lines)
{
    const GeneratorRun run(in_interface("any f();\nattribute long a;\nvoid g(out wstring b);"));

    EXPECT_THAT(
        run.errors(),
        HasSubstr(run.line(5) +
                  "the result of operation 'f' is an any; write the type that is meant, or a string that "
                  "holds JSON\n" +
                  run.line(6) + "attribute 'a' is not supported; declare operations that get and set it\n" +
                  run.line(7) +
                  "argument 'b' of operation 'g' is a wide string; write string, which takes UTF-8\n"));
}

/// What IDL itself forbids is found by the front end, in words of its own.
class InvalidIdl : public testing::TestWithParam<Refusal>
{
};

TEST_P(InvalidIdl, is_named_with_its_line_and_nothing_is_written)
{
    const GeneratorRun run(GetParam().text);

    EXPECT_EQ(run.exit_code(), 1);
    EXPECT_THAT(run.errors(), HasSubstr(run.line(GetParam().line) + GetParam().reason));
    EXPECT_THAT(run.files(), IsEmpty());
}

const Refusal invalid[] = {
    {"operation_declared_twice", in_interface("void f();\nlong f();"), 6,
     "Declaration of operation 'f' clashes"},
    {"argument_declared_twice", in_interface("void f(in long a, in long a);"), 5,
     "Declaration of parameter 'a' clashes"},
    {"interface_declared_twice",
     in_module("local interface I : ::DDS_RMI::Services { void f(); };\n"
               "local interface I : ::DDS_RMI::Services { void g(); };"),
     5, "Declaration of interface 'I' clashes"},
    {"names_that_differ_in_case_only", in_interface("void f();\nvoid F();"), 6,
     "Declaration of operation 'F' clashes with operation 'f'"},
    {"oneway_operation_with_a_result", in_interface("oneway long f();"), 5,
     "Oneway operation 'f' does not return void"},
    {"oneway_operation_with_an_out_argument", in_interface("oneway void f(out long a);"), 5,
     "In oneway operation 'f': out parameter 'a' is not permitted"},
    {"struct_without_members", in_module("struct S {};"), 4, "Syntax error"},
    {"names_of_members_and_types_that_differ_in_case_only",
     in_module("struct A { long x; };\nstruct B { A a; };"), 5,
     "Instance identifier 'a' clashes with use of identifier 'A'"},
    {"unknown_type", in_interface("void f(in Unheard a);"), 5, "Error in look-up of 'Unheard'"},
    {"missing_semicolon", in_interface("void f()"), 6, "Syntax error"},
    {"missing_include", "module M { local interface I : ::DDS_RMI::Services { void f(); }; };\n", 1,
     "Error in look-up of 'DDS_RMI::Services'"},
};

INSTANTIATE_TEST_SUITE_P(idl, InvalidIdl, testing::ValuesIn(invalid), name_of);

} // namespace
