// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "generator_run.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

TEST(Generator, writes_types_info_proxy_and_skeleton_and_nothing_else)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "module M { local interface I : ::DDS_RMI::Services { void f(); }; };\n");

    EXPECT_EQ(run.exit_code(), 0);
    EXPECT_EQ(run.errors(), "");
    EXPECT_THAT(run.files(),
                UnorderedElementsAre("sample_Types.h", "sample_InterfaceInfo.h", "sample_InterfaceInfo.cpp",
                                     "sample_InterfaceProxy.h", "sample_InterfaceProxy.cpp",
                                     "sample_Interface.h", "sample_Interface.cpp"));
    for (const auto& file : run.files()) {
        EXPECT_THAT(run.content(file), StartsWith("// Generated from sample.idl by the RMI code generator."))
            << file;
    }
}

std::string info_of(const std::string& members)
{
    const GeneratorRun run(
        "#include \"dds_rmi.idl\"\n"
        "module M { exception Bad { string why; }; typedef long grid[2][3]; typedef string<8> small_text; "
        "typedef sequence<long> sequence_of_longs; local interface I : ::DDS_RMI::Services { " +
        members + " }; };\n");
    EXPECT_EQ(run.errors(), "");
    return run.content("sample_InterfaceInfo.cpp");
}

TEST(InterfaceInfo, has_one_topic_for_requests_and_one_for_replies)
{
    const std::string info = info_of("long op(in string s); void quiet();");

    EXPECT_THAT(info, HasSubstr("\"M::I\", \"topic___M__I__request\", \"topic___M__I__reply\","));
}

// Peers know operations by these: a change is a change of the wire.
TEST(InterfaceInfo, tells_each_operation_by_its_signature_and_the_signatures_hash)
{
    const std::string info =
        info_of("long op(in string s, in boolean b); void quiet(in unsigned long long big);");

    EXPECT_THAT(info, HasSubstr("{\"op\", \"long op(string, boolean)\", 0xf4d9c28c6c02ce37ULL},"));
    EXPECT_THAT(info, HasSubstr("{\"quiet\", \"void quiet(unsigned long long)\", 0x3bf49ec0db6e0351ULL},"));
}

TEST(InterfaceInfo, has_the_same_signature_whatever_arguments_and_types_are_called)
{
    EXPECT_THAT(info_of("typedef string Text; Text f(in Text a);"), HasSubstr("\"string f(string)\""));
    EXPECT_THAT(info_of("string f(in string other);"), HasSubstr("\"string f(string)\""));
}

TEST(InterfaceInfo, tells_directions_exceptions_and_that_nothing_is_returned)
{
    EXPECT_THAT(info_of("long f(out string a, inout long b, in sequence_of_longs c);"),
                HasSubstr("\"long f(out string, inout long, sequence<long>)\""));
    EXPECT_THAT(info_of("oneway void f(in small_text a);"), HasSubstr("\"oneway void f(string<8>)\""));
    EXPECT_THAT(info_of("void f() raises (Bad);"), HasSubstr("\"void f() raises (M::Bad#"));
    EXPECT_THAT(info_of("grid f();"), HasSubstr("\"long[2][3] f()\""));
}

/// The signature of an operation that uses a type, which the declarations declare.
std::string signature_with(const std::string& declarations, const std::string& operation)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\nmodule M { " + declarations +
                           " local interface I : ::DDS_RMI::Services { " + operation + " }; };\n");
    EXPECT_EQ(run.errors(), "");
    const std::string info = run.content("sample_InterfaceInfo.cpp");
    const auto begin = info.find("{\"op\", ");
    return info.substr(begin, info.find('\n', begin) - begin);
}

// What a peer of another version would misunderstand must not have the same signature.
TEST(InterfaceInfo, has_another_signature_when_anything_in_a_type_has_changed)
{
    const std::string inner = "struct Inner { long x; };";
    const std::string user = "struct User { Inner one; sequence<Inner> more; };";
    const std::string operation = "void op(in User a);";
    const std::string before = signature_with(inner + user, operation);

    EXPECT_EQ(signature_with("const long c = 3; enum E { one_e };" + inner + user, operation), before);
    for (const char* changed :
         {"struct Inner { short x; };", "struct Inner { long y; };", "struct Inner { long x, y; };",
          "struct Inner { long x[1]; };", "struct Inner { sequence<long> x; };"})
        EXPECT_NE(signature_with(changed + user, operation), before) << changed;

    EXPECT_NE(signature_with("enum E { a, b };", "void op(in E e1);"),
              signature_with("enum E { b, a };", "void op(in E e1);"));
    EXPECT_NE(signature_with("exception X { long a; };", "void op() raises (X);"),
              signature_with("exception X { short a; };", "void op() raises (X);"));
    EXPECT_NE(signature_with("typedef string<8> T;", "void op(in T a);"),
              signature_with("typedef string<9> T;", "void op(in T a);"));
    EXPECT_NE(signature_with("typedef sequence<long, 8> T;", "void op(in T a);"),
              signature_with("typedef sequence<long> T;", "void op(in T a);"));
}

TEST(Generator, generates_nothing_for_what_an_included_file_declares)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "# 1 \"other.idl\" 1\n"
                           "module Other { struct S { long x; }; local interface J { void g(); }; };\n"
                           "# 3 \"sample.idl\" 2\n"
                           "module M { local interface I : ::DDS_RMI::Services { void f(); }; };\n");

    EXPECT_EQ(run.errors(), "");
    EXPECT_THAT(run.content("sample_Interface.h"), HasSubstr("class IInterface "));
    EXPECT_THAT(run.content("sample_Interface.h"), Not(HasSubstr("class JInterface ")));
}

/// The first block of IDL in a page of the documentation.
std::string example_in(const std::string& page)
{
    std::ifstream stream(page);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const std::string fence = "```idl\n";
    const auto begin = text.find(fence) + fence.size();
    return text.substr(begin, text.find("```", begin) - begin);
}

TEST(Generator, takes_the_example_of_its_documentation)
{
    const std::string example = example_in(MAPPING_PAGE);
    ASSERT_THAT(example, HasSubstr("struct Settings"));

    const GeneratorRun run(example);

    EXPECT_EQ(run.errors(), "");
    EXPECT_THAT(run.content("sample_InterfaceProxy.h"), HasSubstr("virtual void async_set("));
}

} // namespace
