// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "generator_run.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

TEST(Generator, writes_topics_info_proxy_and_skeleton_and_nothing_else)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "module M { local interface I : ::DDS_RMI::Services { void f(); }; };\n");

    EXPECT_EQ(run.exit_code(), 0);
    EXPECT_EQ(run.errors(), "");
    EXPECT_THAT(run.files(), UnorderedElementsAre("sample_topics.idl", "sample_InterfaceInfo.h",
                                                  "sample_InterfaceInfo.cpp", "sample_InterfaceProxy.h",
                                                  "sample_InterfaceProxy.cpp", "sample_Interface.h",
                                                  "sample_Interface.cpp"));
    for (const auto& file : run.files()) {
        EXPECT_THAT(run.content(file), StartsWith("// Generated from sample.idl by the RMI code generator."))
            << file;
    }
}

// The layout of these structures and their keys are what travels.
TEST(TopicsFile,
     has_a_request_and_a_reply_for_each_operation_that_begin_with_the_header_and_are_keyed_by_the_client)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "module M { local interface I : ::DDS_RMI::Services {\n"
                           "    long op(in string s, in boolean b);\n"
                           "    void quiet(in unsigned long long big);\n"
                           "}; };\n");

    EXPECT_EQ(run.content("sample_topics.idl"),
              R"(// Generated from sample.idl by the RMI code generator. Changes are lost at the next build.

#include "dds_rmi.idl"

module DDS_RMI {
module M {
module I {

struct op_request {
    ::DDS_RMI::Request_Header req_info;
    string s;
    boolean b;
};
#pragma keylist op_request req_info.client_id.client_impl req_info.client_id.client_instance
struct op_reply {
    ::DDS_RMI::Request_Header req_info;
    long result;
};
#pragma keylist op_reply req_info.client_id.client_impl req_info.client_id.client_instance

struct quiet_request {
    ::DDS_RMI::Request_Header req_info;
    unsigned long long big;
};
#pragma keylist quiet_request req_info.client_id.client_impl req_info.client_id.client_instance
struct quiet_reply {
    ::DDS_RMI::Request_Header req_info;
};
#pragma keylist quiet_reply req_info.client_id.client_impl req_info.client_id.client_instance

};
};
};
)");
}

TEST(TopicsFile, has_typedefs_resolved_to_what_they_stand_for)
{
    const GeneratorRun run("#include \"dds_rmi.idl\"\n"
                           "module M {\n"
                           "    typedef string Text;\n"
                           "    local interface I : ::DDS_RMI::Services {\n"
                           "        typedef Text Name;\n"
                           "        Name f(in Text a);\n"
                           "    };\n"
                           "};\n");

    EXPECT_THAT(run.content("sample_topics.idl"), HasSubstr("    string a;\n"));
    EXPECT_THAT(run.content("sample_topics.idl"), HasSubstr("    string result;\n"));
}

TEST(TopicsFile, escapes_names_that_are_keywords_of_later_idl)
{
    const GeneratorRun run(
        "#include \"dds_rmi.idl\"\n"
        "module M { local interface I : ::DDS_RMI::Services { void f(in long _map); }; };\n");

    EXPECT_THAT(run.content("sample_topics.idl"), HasSubstr("    long _map;\n"));
    EXPECT_THAT(run.content("sample_Interface.h"), HasSubstr("f(DDS::Long map)"));
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
