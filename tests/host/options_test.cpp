// SPDX-License-Identifier: Apache-2.0
#include "process/options.h"

#include <gmock/gmock.h>

#include <initializer_list>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "temporary_folder.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using zorbd::Options;

using Result = std::variant<Options, int>;

/// What was read, with what went to standard output and to standard error.
struct Reading
{
    Result result;
    std::string output;
    std::string complaint;
};

Reading read(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "zorbd");
    std::ostringstream output;
    testing::internal::CaptureStderr();
    Result result = zorbd::read_options(static_cast<int>(arguments.size()), arguments.data(), output);
    return {std::move(result), output.str(), testing::internal::GetCapturedStderr()};
}

Options options_of(const std::vector<const char*>& arguments)
{
    const Reading reading = read(arguments);
    EXPECT_EQ(reading.complaint, "");
    return std::get<Options>(reading.result);
}

TEST(options, have_defaults_for_all_but_the_plugin)
{
    const Options options = options_of({"--plugin", "a.so"});

    EXPECT_THAT(options.plugins, ElementsAre("a.so"));
    ASSERT_TRUE(options.tcp);
    EXPECT_EQ(to_text(*options.tcp), "127.0.0.1:8080");
    EXPECT_FALSE(options.unix_socket);
    EXPECT_EQ(options.discovery_timeout, 10);
}

TEST(options, take_several_plugins_in_their_order)
{
    EXPECT_THAT(options_of({"--plugin", "b.so", "--plugin", "a.so"}).plugins, ElementsAre("b.so", "a.so"));
}

TEST(options, serve_on_the_unix_socket_alone_or_on_both)
{
    EXPECT_FALSE(options_of({"--plugin", "a.so", "--unix-socket", "s"}).tcp);
    EXPECT_TRUE(options_of({"--plugin", "a.so", "--unix-socket", "s", "--listen", "[::1]:0"}).tcp);
}

TEST(options, are_read_as_they_are_named)
{
    const Options options = options_of({"--plugin",
                                        "a.so",
                                        "--threads",
                                        "9",
                                        "--max-outstanding",
                                        "10",
                                        "--max-body",
                                        "100",
                                        "--max-depth",
                                        "5",
                                        "--max-batch",
                                        "6",
                                        "--max-connections",
                                        "7",
                                        "--idle-timeout",
                                        "1.5",
                                        "--request-timeout",
                                        "2.5",
                                        "--retry-pause",
                                        "0.5",
                                        "--retry-pause-max",
                                        "3",
                                        "--stop-timeout",
                                        "0",
                                        "--unix-socket",
                                        "s",
                                        "--unix-mode",
                                        "0600",
                                        "--unix-group",
                                        "root",
                                        "--discovery-timeout",
                                        "-1",
                                        "--token-file",
                                        "t",
                                        "--max-connections-per-address",
                                        "8"});

    EXPECT_EQ(options.threads, 9U);
    EXPECT_EQ(options.max_outstanding, 10U);
    EXPECT_EQ(options.max_body, 100U);
    EXPECT_EQ(options.dispatch.max_depth, 5);
    EXPECT_EQ(options.dispatch.max_batch, 6);
    EXPECT_EQ(options.connections.total, 7U);
    EXPECT_EQ(options.connections.per_address, 8U);
    EXPECT_EQ(options.connections.idle, std::chrono::milliseconds(1500));
    EXPECT_EQ(options.connections.request, std::chrono::milliseconds(2500));
    EXPECT_EQ(options.binding_pauses.first, std::chrono::milliseconds(500));
    EXPECT_EQ(options.binding_pauses.longest, std::chrono::seconds(3));
    EXPECT_EQ(options.stop_timeout, std::chrono::seconds(0));
    EXPECT_EQ(options.unix_access.mode, 0600U);
    EXPECT_EQ(options.unix_access.group, 0U);
    EXPECT_EQ(options.discovery_timeout, -1);
    EXPECT_EQ(options.token_file, "t");
}

TEST(options, may_stand_in_a_file_under_the_same_names)
{
    const test_support::TemporaryFolder folder;
    const std::string file = folder.write("zorbd.conf", "# what this device serves\n"
                                                        "plugin = [\"a.so\", \"b.so\"]\n"
                                                        "listen = \"127.0.0.1:81\"\n"
                                                        "max-batch = 5\n"
                                                        "idle-timeout = 1.5\n");

    const Options options = options_of({"--config", file.c_str(), "--max-batch", "6"});

    EXPECT_THAT(options.plugins, ElementsAre("a.so", "b.so"));
    EXPECT_EQ(to_text(*options.tcp), "127.0.0.1:81");
    EXPECT_EQ(options.connections.idle, std::chrono::milliseconds(1500));
    EXPECT_EQ(options.dispatch.max_batch, 6) << "the command line goes before the file";
}

TEST(options, refuse_a_file_with_an_unknown_name_or_that_is_missing)
{
    const test_support::TemporaryFolder folder;
    const std::string file = folder.write("zorbd.conf", "plugin = \"a.so\"\nmax-bodies = 5\n");

    const Reading unknown = read({"--config", file.c_str()});
    const Reading missing = read({"--plugin", "a.so", "--config", "/nowhere.conf"});

    EXPECT_EQ(std::get<int>(unknown.result), 2);
    EXPECT_THAT(unknown.complaint, HasSubstr("max-bodies"));
    EXPECT_EQ(std::get<int>(missing.result), 2);
    EXPECT_THAT(missing.complaint, HasSubstr("/nowhere.conf"));
}

TEST(options, tell_how_to_use_the_program)
{
    const Reading help = read({"--help"});

    EXPECT_EQ(std::get<int>(help.result), 0);
    EXPECT_THAT(help.output, AllOf(HasSubstr("--plugin FILE"), HasSubstr("--listen ADDRESS:PORT"),
                                   HasSubstr("--max-body"), HasSubstr("Exit codes")));
    EXPECT_EQ(help.complaint, "");
}

TEST(options, tell_the_version)
{
    const Reading version = read({"--version"});

    EXPECT_EQ(std::get<int>(version.result), 0);
    EXPECT_EQ(version.output, std::string("zorbd ") + PROGRAM_VERSION + "\n");
}

struct Mistake
{
    const char* name;
    std::vector<const char*> arguments;
    const char* complaint;
};

void PrintTo(const Mistake& mistake, std::ostream* out)
{
    *out << mistake.name;
}

class OptionMistake : public testing::TestWithParam<Mistake>
{
};

TEST_P(OptionMistake, ends_the_program_with_a_message_that_names_the_option)
{
    std::vector<const char*> arguments = {"--plugin", "a.so"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());

    const Reading reading = read(arguments);

    ASSERT_TRUE(std::holds_alternative<int>(reading.result));
    EXPECT_EQ(std::get<int>(reading.result), 2);
    EXPECT_THAT(reading.complaint, AllOf(testing::StartsWith("zorbd: "), HasSubstr(GetParam().complaint),
                                         HasSubstr("zorbd --help")));
    EXPECT_EQ(reading.output, "");
}

const Mistake mistakes[] = {
    {"unknown_option", {"--plugins"}, "--plugins"},
    {"stray_argument", {"b.so"}, "b.so"},
    {"missing_value", {"--listen"}, "--listen"},
    {"no_port", {"--listen", "127.0.0.1"}, "--listen: '127.0.0.1' is not of the form ADDRESS:PORT"},
    {"port_beyond_the_range", {"--listen", "127.0.0.1:65536"}, "--listen: '65536' is no port"},
    {"port_with_a_tail", {"--listen", "127.0.0.1:80x"}, "--listen: '80x' is no port"},
    {"host_name", {"--listen", "device:80"}, "--listen: 'device' is no IPv4 or IPv6 address"},
    {"no_brackets", {"--listen", "::1:80"}, "--listen: an IPv6 address must stand in brackets"},
    {"every_address_without_tls", {"--listen", "0.0.0.0:80", "--token-file", "t"}, "without TLS everyone"},
    {"ipv6_without_tls", {"--listen", "[::]:80", "--token-file", "t"}, "--listen: [::]:80 can be reached"},
    {"lan_without_tls", {"--listen", "192.0.2.1:80", "--token-file", "t"}, "--allow-plain-http if that"},
    {"lan_without_a_token",
     {"--listen", "192.0.2.1:80", "--tls-certificate", "c", "--tls-key", "k"},
     "give --token-file or --tls-client-ca"},
    {"plain_http_without_a_token",
     {"--listen", "192.0.2.1:80", "--allow-plain-http"},
     "give --token-file or --tls-client-ca"},
    {"certificate_without_a_key", {"--tls-certificate", "c"}, "--tls-key: is needed"},
    {"key_without_a_certificate", {"--tls-key", "k"}, "--tls-certificate: is needed"},
    {"client_authority_alone", {"--tls-client-ca", "a"}, "--tls-certificate: is needed"},
    {"tls_without_an_address",
     {"--unix-socket", "s", "--tls-certificate", "c", "--tls-key", "k"},
     "--tls-certificate: is for --listen"},
    {"no_threads", {"--threads", "0"}, "--threads"},
    {"negative_threads", {"--threads", "-1"}, "--threads"},
    {"no_outstanding_work", {"--max-outstanding", "0"}, "--max-outstanding"},
    {"tiny_body", {"--max-body", "1"}, "--max-body"},
    {"body_in_words", {"--max-body", "much"}, "--max-body"},
    {"no_depth", {"--max-depth", "1"}, "--max-depth"},
    {"no_batch", {"--max-batch", "0"}, "--max-batch"},
    {"no_connections", {"--max-connections", "0"}, "--max-connections"},
    {"no_connections_per_address", {"--max-connections-per-address", "0"}, "--max-connections-per-address"},
    {"no_idle_time", {"--idle-timeout", "0"}, "--idle-timeout"},
    {"no_request_time", {"--request-timeout", "-1"}, "--request-timeout"},
    {"discovery_time_below_for_ever", {"--discovery-timeout", "-2"}, "--discovery-timeout"},
    {"negative_stop_time", {"--stop-timeout", "-1"}, "--stop-timeout"},
    {"pauses_that_shrink", {"--retry-pause", "2", "--retry-pause-max", "1"}, "--retry-pause-max"},
    {"mode_that_is_not_octal", {"--unix-mode", "0888"}, "--unix-mode: '0888' is no octal file mode"},
    {"mode_with_more_than_permissions", {"--unix-mode", "7777"}, "--unix-mode: '7777' is no octal file mode"},
    {"empty_unix_socket", {"--unix-socket", ""}, "--unix-socket: the path is empty"},
    {"unknown_group", {"--unix-group", "no-such-group"}, "--unix-group: there is no group 'no-such-group'"},
};

INSTANTIATE_TEST_SUITE_P(options, OptionMistake, testing::ValuesIn(mistakes),
                         [](const auto& mistake) { return mistake.param.name; });

/// The options whose values are numbers, as the help tells.
std::vector<std::string> number_options()
{
    std::vector<std::string> names;
    std::istringstream help(read({"--help"}).output);
    for (std::string line; std::getline(help, line);)
        if (line.find(" NUMBER") != std::string::npos || line.find(" SECONDS") != std::string::npos)
            names.push_back(line.substr(line.find("--"), line.find(' ', line.find("--")) - line.find("--")));
    return names;
}

TEST(options, take_no_number_that_is_not_finite_or_out_of_range)
{
    const std::vector<std::string> names = number_options();
    ASSERT_GE(names.size(), 19U);

    for (const std::string& name : names)
        for (const char* value : {"nan", "-nan", "NaN", "inf", "-inf", "Infinity", "1e999", "-1e999", "-5",
                                  "99999999999999999999999", "-99999999999999999999999",
                                  "18446744073709551621", "5x", "five", "0x", ""}) {
            const Reading reading = read({"--plugin", "a.so", name.c_str(), value});
            ASSERT_TRUE(std::holds_alternative<int>(reading.result)) << name << ' ' << value;
            EXPECT_EQ(std::get<int>(reading.result), 2) << name << ' ' << value;
            EXPECT_THAT(reading.complaint, AllOf(testing::StartsWith("zorbd: "), HasSubstr(name)))
                << name << ' ' << value;
        }
}

TEST(options, need_a_plugin)
{
    const Reading reading = read({});

    EXPECT_EQ(std::get<int>(reading.result), 2);
    EXPECT_THAT(reading.complaint, HasSubstr("--plugin is required"));
}

TEST(options, let_other_machines_in_when_they_are_known_and_nobody_reads_along)
{
    const std::vector<const char*> reachable = {"--plugin", "a.so", "--listen", "0.0.0.0:80"};
    const auto address_with = [&reachable](std::vector<const char*> more) {
        more.insert(more.begin(), reachable.begin(), reachable.end());
        const Options options = options_of(more);
        return zorbd::to_text(*options.tcp);
    };

    EXPECT_EQ(address_with({"--token-file", "t", "--tls-certificate", "c", "--tls-key", "k"}), "0.0.0.0:80");
    EXPECT_EQ(address_with({"--tls-client-ca", "a", "--tls-certificate", "c", "--tls-key", "k"}),
              "0.0.0.0:80");
    EXPECT_EQ(address_with({"--token-file", "t", "--allow-plain-http"}), "0.0.0.0:80");
    EXPECT_EQ(to_text(*options_of({"--plugin", "a.so", "--listen", "127.9.9.9:80"}).tcp), "127.9.9.9:80");
}

} // namespace
