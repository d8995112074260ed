// SPDX-License-Identifier: Apache-2.0
#include "child_process.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <system_error>

namespace {

using test_support::ChildProcess;
using testing::Optional;
using namespace std::chrono_literals;

ChildProcess shell(const std::string& script)
{
    return ChildProcess({"/bin/sh", "-c", script});
}

TEST(ChildProcess, collects_both_streams_apart)
{
    ChildProcess child = shell("echo to output; echo to error >&2");

    EXPECT_THAT(child.wait_for_exit(), Optional(0));

    EXPECT_EQ(child.output(), "to output\n");
    EXPECT_EQ(child.error_output(), "to error\n");
}

TEST(ChildProcess, gives_the_exit_code)
{
    ChildProcess child = shell("exit 7");

    EXPECT_THAT(child.wait_for_exit(), Optional(7));
}

TEST(ChildProcess, gives_the_signal_that_ended_it)
{
    ChildProcess child = shell("exec cat");

    EXPECT_THAT(child.terminate(), Optional(128 + SIGTERM));
}

TEST(ChildProcess, passes_over_lines_before_the_one_waited_for)
{
    ChildProcess child = shell("echo first; echo second one; echo second two; exec cat");

    EXPECT_THAT(child.wait_for_line("second"), Optional(std::string("second one")));
    EXPECT_THAT(child.wait_for_line("second"), Optional(std::string("second two")));
    EXPECT_FALSE(child.wait_for_line("first", 10ms));
}

TEST(ChildProcess, does_not_pass_over_lines_when_the_wait_fails)
{
    ChildProcess child = shell("echo first; exec cat");

    EXPECT_FALSE(child.wait_for_line("never", 10ms));

    EXPECT_THAT(child.wait_for_line("first"), Optional(std::string("first")));
}

TEST(ChildProcess, stops_waiting_for_a_line_when_the_stream_ends)
{
    ChildProcess child = shell("echo only >&2");

    EXPECT_FALSE(child.wait_for_error_line("never"));
}

TEST(ChildProcess, takes_a_last_line_without_an_end)
{
    ChildProcess child = shell("printf last");

    EXPECT_THAT(child.wait_for_line("la"), Optional(std::string("last")));
}

TEST(ChildProcess, hands_on_what_is_written_to_its_input)
{
    ChildProcess child({"cat"});

    child.write("a line\n");
    EXPECT_THAT(child.wait_for_line("a line"), Optional(std::string("a line")));

    child.close_input();
    EXPECT_THAT(child.wait_for_exit(), Optional(0));
}

TEST(ChildProcess, reports_a_write_to_a_process_that_has_gone)
{
    ChildProcess child = shell("exit 0");
    ASSERT_THAT(child.wait_for_exit(), Optional(0));

    EXPECT_THROW(child.write("text"), std::system_error);
}

TEST(ChildProcess, puts_its_environment_on_top_of_the_inherited_one)
{
    ChildProcess child({"/bin/sh", "-c", "echo \"$VARNEL_TEST_VALUE in ${HOME:+a home}\""},
                       {{"VARNEL_TEST_VALUE", "here"}, {"HOME", "/"}});

    EXPECT_THAT(child.wait_for_line(""), Optional(std::string("here in a home")));
}

TEST(ChildProcess, says_which_program_cannot_be_started)
{
    try {
        const ChildProcess child({"/nonexistent/program"});
        FAIL() << "started";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
        EXPECT_THAT(error.what(), testing::HasSubstr("/nonexistent/program"));
    }
}

TEST(ChildProcess, refuses_to_signal_a_reaped_process)
{
    ChildProcess child = shell("exit 0");
    ASSERT_THAT(child.wait_for_exit(), Optional(0));

    EXPECT_THROW(child.signal(SIGTERM), std::system_error);
}

TEST(ChildProcess, is_killed_by_the_destructor)
{
    pid_t pid = 0;
    {
        const ChildProcess child({"cat"});
        pid = child.pid();
        ASSERT_EQ(::kill(pid, 0), 0);
    }

    EXPECT_NE(::kill(pid, 0), 0);
}

TEST(ChildProcess, destructor_does_not_wait_for_heirs_of_its_pipes)
{
    const auto begin = std::chrono::steady_clock::now();
    {
        ChildProcess child = shell("sleep 20 & echo started; exec cat");
        ASSERT_TRUE(child.wait_for_line("started"));
    }

    EXPECT_LT(std::chrono::steady_clock::now() - begin, 15s);
}

} // namespace
