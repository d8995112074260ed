// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "generator_run.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

TEST(Generator, writes_info_proxy_and_skeleton_and_nothing_else)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "module M { local interface I : ::DDS_RMI::Services { void f(); }; };\n");

    EXPECT_EQ(run.exit_code(), 0);
    EXPECT_EQ(run.errors(), "");
    EXPECT_THAT(run.files(), UnorderedElementsAre("sample_InterfaceInfo.h", "sample_InterfaceInfo.cpp",
                                                  "sample_InterfaceProxy.h", "sample_InterfaceProxy.cpp",
                                                  "sample_Interface.h", "sample_Interface.cpp"));
    for (const auto& file : run.files()) {
        EXPECT_THAT(run.content(file), StartsWith("// Generated from sample.idl by the RMI code generator."))
            << file;
    }
}

std::string info_of(const std::string& members)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "module M { local interface I : ::DDS_RMI::Services { " +
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

} // namespace
