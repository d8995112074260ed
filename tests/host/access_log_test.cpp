// SPDX-License-Identifier: Apache-2.0
// The access log: one JSON line for each call.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "temporary_folder.h"
#include "zorbd_process.h"

namespace {

using host_test::ask;
using host_test::call;
using host_test::post;
using host_test::ZorbdProcess;
using test_support::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Optional;

constexpr const char* notification = R"({"jsonrpc":"2.0","method":"seven"})";

/// What a line says after its time, where `peer` is the beginning of an address.
std::string line_of(const std::string& peer, const std::string& method, const std::string& id,
                    const std::string& code)
{
    return R"(\{"time":"20[0-9-]+T[0-9:.]+Z","peer":")" + peer + R"([0-9]*","method":")" + method +
           R"(","id":)" + id + R"(,"duration_us":[0-9]+,"code":)" + code + R"(\})";
}

std::vector<std::string> lines_of(const std::string& file)
{
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

TEST(access_log, has_a_line_for_each_call_with_its_peer_method_id_duration_and_code)
{
    const TemporaryFolder folder;
    const std::string file = folder.path() / "access.log";
    ZorbdProcess zorbd({"--access-log", file});

    ask(zorbd.port(), post(call("seven", "{}", R"("mine")")));
    ask(zorbd.port(), post('[' + std::string(notification) + ',' + call("refuse", "{}", "2") + ']'));
    ask(zorbd.port(), post(call("nobody", "{}", "3")));
    ask(zorbd.port(), post("no JSON"));
    ASSERT_EQ(zorbd.terminate(), 0);

    const std::string peer = R"(127\.0\.0\.1:)";
    EXPECT_THAT(lines_of(file), ElementsAre(MatchesRegex(line_of(peer, "seven", R"("mine")", "0")),
                                            MatchesRegex(line_of(peer, "seven", "null", "0")),
                                            MatchesRegex(line_of(peer, "refuse", "2", "-32602")),
                                            MatchesRegex(line_of(peer, "", "3", "-32601")),
                                            MatchesRegex(line_of(peer, "", "null", "-32700"))));
}

TEST(access_log, is_its_owners_and_his_groups_and_is_appended_to)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("access.log", "an earlier line\n");
    const std::string other = folder.path() / "new.log";
    for (const std::string& log : {file, other}) {
        ZorbdProcess zorbd({"--access-log", log});
        ask(zorbd.port(), post(call("seven")));
        ASSERT_EQ(zorbd.terminate(), 0);
    }

    EXPECT_THAT(lines_of(file), ElementsAre("an earlier line", HasSubstr("seven")));
    EXPECT_EQ(std::filesystem::status(other).permissions() & std::filesystem::perms::others_all,
              std::filesystem::perms::none);
}

TEST(access_log, goes_to_standard_output_among_the_plugins_lines)
{
    const TemporaryFolder folder;
    const std::string socket = folder.path() / "socket";
    ZorbdProcess zorbd({"--access-log", "-", "--unix-socket", socket});

    ask(zorbd.port(), post(call("seven", "{}", "1")));
    EXPECT_THAT(zorbd.wait_for_line(R"("method":"seven")"),
                Optional(MatchesRegex(line_of(R"(127\.0\.0\.1:)", "seven", "1", "0"))));
    ask(socket, post(call("seven", "{}", "2")));
    EXPECT_THAT(zorbd.wait_for_line(R"("method":"seven")"),
                Optional(MatchesRegex(line_of("unix", "seven", "2", "0"))));
}

TEST(access_log, is_opened_anew_on_sighup_so_that_it_can_be_moved_away)
{
    const TemporaryFolder folder;
    const std::string file = folder.path() / "access.log";
    ZorbdProcess zorbd({"--access-log", file});
    ask(zorbd.port(), post(call("seven", "{}", "1")));
    ASSERT_TRUE(zorbd.says("is bound"));
    std::filesystem::rename(file, file + ".1");
    ask(zorbd.port(), post(call("seven", "{}", "2")));

    zorbd.signal(SIGHUP);
    ASSERT_TRUE(zorbd.says("the configuration has been read again"));
    ask(zorbd.port(), post(call("seven", "{}", "3")));
    ASSERT_EQ(zorbd.terminate(), 0);

    EXPECT_THAT(lines_of(file), ElementsAre(HasSubstr(R"("id":3)")));
    EXPECT_THAT(lines_of(file + ".1"), ElementsAre(HasSubstr(R"("id":1)"), HasSubstr(R"("id":2)")));
}

TEST(access_log, stays_where_it_is_when_it_cannot_be_opened_anew)
{
    const TemporaryFolder folder;
    const std::string logs = folder.path() / "logs";
    std::filesystem::create_directory(logs);
    ZorbdProcess zorbd({"--access-log", logs + "/access.log"});
    std::filesystem::rename(logs, logs + ".old");

    zorbd.signal(SIGHUP);
    EXPECT_TRUE(
        zorbd.says("cannot open the access log " + logs + "/access.log: No such file or directory; "));
    ask(zorbd.port(), post(call("seven", "{}", "1")));
    ASSERT_EQ(zorbd.terminate(), 0);

    EXPECT_THAT(lines_of(logs + ".old/access.log"), ElementsAre(HasSubstr(R"("id":1)")));
}

TEST(access_log, that_cannot_be_written_to_is_named_at_the_start)
{
    auto zorbd =
        host_test::start_zorbd({"--listen", "127.0.0.1:0", "--plugin", host_test::plugin("served_methods"),
                                "--access-log", "/nowhere/access.log"});

    EXPECT_EQ(zorbd.wait_for_exit(), 1);
    EXPECT_EQ(zorbd.error_output(),
              "zorbd: cannot open the access log /nowhere/access.log: No such file or directory\n");
}

} // namespace
