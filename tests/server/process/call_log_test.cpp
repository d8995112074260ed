// SPDX-License-Identifier: Apache-2.0
#include "process/call_log.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>

using varnel::CallLog;
using varnel::quoted_text;

TEST(Quoted, shows_plain_text_as_it_is)
{
    EXPECT_EQ(quoted_text("mode=fast"), R"("mode=fast")");
    EXPECT_EQ(quoted_text(""), R"("")");
}

TEST(Quoted, stays_on_one_line_of_printable_text)
{
    EXPECT_EQ(quoted_text("a\nb\x1b[31m\x7f\xc3\xa9"), R"("a\x0ab\x1b[31m\x7f\xc3\xa9")");
}

TEST(Quoted, cannot_be_ended_from_inside)
{
    EXPECT_EQ(quoted_text(R"(a") = 0\)"), R"("a\") = 0\\")");
}

TEST(Quoted, shows_the_beginning_of_a_long_text_and_its_length)
{
    EXPECT_EQ(quoted_text(std::string(160, 'x')), "\"" + std::string(160, 'x') + "\"");
    EXPECT_EQ(quoted_text(std::string(161, 'x')), "\"" + std::string(160, 'x') + "\"... (161 bytes)");
}

TEST(CallLog, tells_operation_arguments_and_result)
{
    std::ostringstream out;
    CallLog log(out);

    log.call("node_set_config_revert", {quoted_text("00:0A"), quoted_text("k=v"), "5"}, {1});

    EXPECT_EQ(out.str(), "node_set_config_revert(\"00:0A\", \"k=v\", 5) = 1\n");
}

TEST(CallLog, names_the_failure)
{
    std::ostringstream out;
    CallLog log(out);

    log.call("network_decommission", {}, {-4});

    EXPECT_EQ(out.str(), "network_decommission() = -4 (not_commissioned)\n");
}

TEST(CallLog, shows_the_detail_after_the_result)
{
    std::ostringstream out;
    CallLog log(out);

    log.call("node_get_config", {quoted_text("00:0A")}, {1, "k=v"});

    EXPECT_EQ(out.str(), "node_get_config(\"00:0A\") = 1 \"k=v\"\n");
}

TEST(CallLog, keeps_the_lines_of_several_threads_whole)
{
    std::ostringstream out;
    CallLog log(out);
    const auto write = [&log] {
        for (int i = 0; i < 500; ++i)
            log.note("abcdefghijklmnopqrstuvwxyz");
    };

    std::thread other(write);
    write();
    other.join();

    std::istringstream lines(out.str());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        ASSERT_EQ(line, "abcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(count, 1000);
}
