// SPDX-License-Identifier: Apache-2.0
#include "process/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "process/exit_code.h"

using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;
using varnel::MacAddress;
using varnel::Options;

namespace {

std::variant<Options, int> parse(const std::vector<std::string>& arguments)
{
    std::vector<const char*> argv = {"varnelde"};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    return varnel::parse_options(static_cast<int>(argv.size()), argv.data());
}

Options accepted(const std::vector<std::string>& arguments)
{
    return std::get<Options>(parse(arguments));
}

/// What is said about a command line that is refused.
std::string complaint_about(const std::vector<std::string>& arguments)
{
    CaptureStderr();
    const auto result = parse(arguments);
    const std::string complaint = GetCapturedStderr();
    const int* const exit_code = std::get_if<int>(&result);
    return exit_code != nullptr && *exit_code == varnel::exit_usage ? complaint : "accepted";
}

} // namespace

TEST(Options, have_defaults)
{
    const Options options = accepted({});

    EXPECT_EQ(options.instance, 1);
    EXPECT_EQ(options.service, "VarnelDE_Server");
    EXPECT_FALSE(options.is_commissioned);
    EXPECT_TRUE(options.nodes.empty());
    EXPECT_EQ(options.delay.count(), 0);
    EXPECT_EQ(options.threads, 1);
}

TEST(Options, name_the_service_and_its_instance)
{
    const Options options = accepted({"--service", "Other", "--instance=7"});

    EXPECT_EQ(options.service, "Other");
    EXPECT_EQ(options.instance, 7);
}

TEST(Options, set_delay_and_threads)
{
    const Options options = accepted({"--delay", "250", "--threads", "4"});

    EXPECT_EQ(options.delay.count(), 250);
    EXPECT_EQ(options.threads, 4);
}

TEST(Options, can_start_with_a_commissioned_network_that_is_empty)
{
    EXPECT_TRUE(accepted({"--commissioned"}).is_commissioned);
}

TEST(Options, can_start_with_a_commissioned_network_that_has_nodes)
{
    const Options options = accepted({"--node", "00:00:00:00:00:0a=5", "--node", "00000000000B"});

    const std::map<MacAddress, int> expected = {{*MacAddress::parse("00000000000A"), 5},
                                                {*MacAddress::parse("00000000000B"), 0}};
    EXPECT_TRUE(options.is_commissioned);
    EXPECT_EQ(options.nodes, expected);
}

class BadCommandLine : public testing::TestWithParam<std::pair<std::vector<std::string>, std::string>>
{
};

TEST_P(BadCommandLine, is_refused_with_a_message_that_names_the_mistake)
{
    EXPECT_THAT(complaint_about(GetParam().first), HasSubstr(GetParam().second));
}

using Case = std::pair<std::vector<std::string>, std::string>;
INSTANTIATE_TEST_SUITE_P(
    Mistakes, BadCommandLine,
    testing::Values(Case{{"--nonsense"}, "--nonsense"}, Case{{"surplus"}, "surplus"},
                    Case{{"--instance", "-1"}, "--instance"}, Case{{"--instance", "one"}, "--instance"},
                    Case{{"--instance", "2147483648"}, "--instance"}, Case{{"--service", ""}, "--service"},
                    Case{{"--service", std::string(256, 's')}, "--service"},
                    Case{{"--delay", "-1"}, "--delay"}, Case{{"--delay", "600001"}, "--delay"},
                    Case{{"--threads", "0"}, "--threads"}, Case{{"--threads", "65"}, "--threads"},
                    Case{{"--node"}, "--node"}, Case{{"--node", "00:0A"}, "'00:0A': give a MAC address"},
                    Case{{"--node", "00000000000A=256"}, "from 0 to 255"},
                    Case{{"--node", "00000000000A="}, "from 0 to 255"},
                    Case{{"--node", "00000000000A=1x"}, "from 0 to 255"},
                    Case{{"--node", "00000000000A", "--node", "00:00:00:00:00:0a=1"}, "given twice"}));

TEST(Options, are_explained_on_request)
{
    CaptureStdout();
    const auto result = parse({"--help"});
    const std::string help = GetCapturedStdout();

    EXPECT_EQ(std::get<int>(result), varnel::exit_done);
    for (const char* option : {"--help", "--version", "--instance", "--service", "--commissioned", "--node",
                               "--delay", "--threads", "VarnelDE_Server", "Exit codes", "CYCLONEDDS_URI"})
        EXPECT_THAT(help, HasSubstr(option));
}

TEST(Options, tell_the_version_on_request)
{
    CaptureStdout();
    const auto result = parse({"--version"});

    EXPECT_EQ(std::get<int>(result), varnel::exit_done);
    EXPECT_EQ(GetCapturedStdout(), "varnelde " PROGRAM_VERSION "\n");
}
