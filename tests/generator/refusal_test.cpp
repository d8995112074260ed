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

/// `text` begins on line 4; the types of line 2 are there to be used.
std::string in_module(const std::string& text)
{
    return in_file(
        "module Types { typedef sequence<long> Longs; typedef long Array[3]; typedef fixed<5, 2> Amount; };\n"
        "module M {\n" +
        text + "\n};");
}

/// `text` begins on line 5.
std::string in_interface(const std::string& text)
{
    return in_module("local interface I : ::DDS_RMI::Services {\n" + text + "\n};");
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
     "interface 'I' is not in a module"},
    {"interface_that_is_not_local", in_module("\ninterface I { void f(); };"), 5,
     "interface 'I' is not local; write 'local interface'"},
    {"interface_that_extends_nothing", in_module("local interface I { void f(); };"), 4,
     "interface 'I' does not extend ::DDS_RMI::Services"},
    {"interface_that_extends_another",
     in_module(
         "local interface I : ::DDS_RMI::Services { void f(); };\nlocal interface J : I { void g(); };"),
     5, "interface 'J' extends ::M::I; only ::DDS_RMI::Services can be extended"},
    {"interface_that_extends_two",
     in_module("local interface I { void f(); };\nlocal interface J : ::DDS_RMI::Services, I { void g(); };"),
     5, "interface 'J' extends ::M::I; only ::DDS_RMI::Services can be extended"},
    {"interface_without_operations", in_module("local interface I : ::DDS_RMI::Services {};"), 4,
     "interface 'I' has no operation"},
    {"structure", in_module("struct S { long x; };"), 4,
     "struct 'S' is not supported; only interfaces can be declared"},
    {"union", in_module("union U switch (long) { case 1: long x; };"), 4,
     "union 'U' is not supported; only interfaces can be declared"},
    {"enumeration", in_module("enum E { one, two };"), 4,
     "enum 'E' is not supported; only interfaces can be declared"},
    {"constant", in_module("const long limit = 3;"), 4,
     "constant 'limit' is not supported; only interfaces can be declared"},
    {"exception", in_module("exception Bad {};"), 4,
     "exception 'Bad' is not supported; only interfaces can be declared"},
    {"valuetype", in_module("valuetype V {};"), 4,
     "valuetype 'V' is not supported; only interfaces can be declared"},
    {"native", in_module("native N;"), 4, "native 'N' is not supported; only interfaces can be declared"},
    {"declaration_outside_a_module", in_file("\nenum E { one };"), 3,
     "enum 'E' is not supported; only interfaces can be declared"},
};

const Refusal members[] = {
    {"attribute", in_interface("attribute long speed;"), 5,
     "attribute 'speed' is not supported; declare operations"},
    {"structure", in_interface("struct S { long x; };"), 5,
     "struct 'S' is not supported; an interface has operations only"},
    {"constant", in_interface("const long limit = 3;"), 5,
     "constant 'limit' is not supported; an interface has operations only"},
    {"oneway_operation", in_interface("void f();\noneway void g();"), 6,
     "operation 'g' is oneway; every operation has a reply"},
    {"raised_exception", in_interface("exception Bad {};\nvoid f() raises (Bad);"), 6,
     "operation 'f' raises exceptions; tell a failure by the result"},
    {"context", in_interface("void f() context (\"c\");"), 5,
     "operation 'f' has a context, which is not supported"},
    {"out_argument", in_interface("void f(out long a);"), 5,
     "argument 'a' of operation 'f' is out; only in-arguments are supported"},
    {"inout_argument", in_interface("void f(in long a,\n       inout long b);"), 6,
     "argument 'b' of operation 'f' is inout; only in-arguments are supported"},
};

Refusal argument_type(const char* name, const std::string& type, const std::string& description)
{
    return {name, in_interface("void f(in long a,\n       in " + type + " b);"), 6,
            "argument 'b' of operation 'f' is " + description +
                "; only basic types and unbounded strings are supported"};
}

Refusal result_type(const char* name, const std::string& type, const std::string& description)
{
    return {name, in_interface("void f();\n" + type + " g();"), 6,
            "the result of operation 'g' is " + description +
                "; only basic types and unbounded strings are supported"};
}

const Refusal types[] = {
    argument_type("sequence", "Types::Longs", "a sequence"),
    argument_type("array", "Types::Array", "an array"),
    argument_type("fixed_point_number", "Types::Amount", "a fixed-point number"),
    argument_type("bounded_string", "string<8>", "a bounded string"),
    argument_type("wide_string", "wstring", "a wide string"),
    argument_type("wide_character", "wchar", "a wide character"),
    argument_type("long_double", "long double", "a long double"),
    argument_type("any", "any", "an any"),
    argument_type("object", "Object", "an interface"),
    argument_type("interface", "::DDS_RMI::Services", "an interface"),
    argument_type("structure", "::DDS_RMI::Identification", "a struct"),
    result_type("sequence_result", "Types::Longs", "a sequence"),
    result_type("structure_result", "::DDS_RMI::Identification", "a struct"),
    result_type("bounded_string_result", "string<8>", "a bounded string"),
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
    const GeneratorRun run(in_interface("oneway void f();\nattribute long a;\nvoid g(out long b);"));

    EXPECT_EQ(run.errors(), run.line(5) + "operation 'f' is oneway; every operation has a reply\n" +
                                run.line(6) + "attribute 'a' is not supported; declare operations\n" +
                                run.line(7) +
                                "argument 'b' of operation 'g' is out; only in-arguments are supported\n");
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
    {"unknown_type", in_interface("void f(in Unheard a);"), 5, "Error in look-up of 'Unheard'"},
    {"missing_semicolon", in_interface("void f()"), 6, "Syntax error"},
    {"missing_include", "module M { local interface I : ::DDS_RMI::Services { void f(); }; };\n", 1,
     "Error in look-up of 'DDS_RMI::Services'"},
};

INSTANTIATE_TEST_SUITE_P(idl, InvalidIdl, testing::ValuesIn(invalid), name_of);

} // namespace
