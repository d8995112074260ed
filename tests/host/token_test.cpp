// SPDX-License-Identifier: Apache-2.0
// Tokens with names, rights and an end.
#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <string>

#include "http/token.h"
#include "temporary_folder.h"
#include "zorbd_process.h"

namespace {

using namespace host_test;
using test_support::ChildProcess;
using testing::HasSubstr;
using testing::Not;
using testing::Optional;

const std::string json_type = "Content-Type: application/json\r\n";

TEST(pattern, stands_for_names)
{
    EXPECT_TRUE(zorbd::stands_for("*", "node_get_data"));
    EXPECT_TRUE(zorbd::stands_for("node_get_*", "node_get_data"));
    EXPECT_TRUE(zorbd::stands_for("*_get_*", "node_get_data"));
    EXPECT_TRUE(zorbd::stands_for("node_get_data", "node_get_data"));
    EXPECT_TRUE(zorbd::stands_for("node_get_data*", "node_get_data"));
    EXPECT_FALSE(zorbd::stands_for("node_get_*", "node_set_config"));
    EXPECT_FALSE(zorbd::stands_for("node_get", "node_get_data"));
    EXPECT_FALSE(zorbd::stands_for("*_get", "node_get_data"));
    EXPECT_FALSE(zorbd::stands_for("", "node_get_data"));
}

class Tokens : public testing::Test
{
protected:
    /// `zorbd token <words> --file <the test's file>`
    ChildProcess token(Options words) const
    {
        words.insert(words.begin(), "token");
        words.insert(words.end(), {"--file", file()});
        ChildProcess command = start_zorbd(words);
        command.wait_for_exit();
        return command;
    }

    /// Gives the secret.
    std::string add(const std::string& name, Options more = {}) const
    {
        more.insert(more.begin(), {"add", name});
        const ChildProcess command = token(more);
        EXPECT_EQ(command.output().size(), 65U) << command.error_output();
        return command.output().substr(0, command.output().find('\n'));
    }

    std::string file() const { return m_folder.path() / "tokens"; }
    std::string content() const
    {
        std::ifstream stream(file());
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    void write(const std::string& text) const
    {
        m_folder.write("tokens", text);
        std::filesystem::permissions(file(), std::filesystem::perms(0600));
    }

    static HttpResponse ask_with(const ZorbdProcess& zorbd, const std::string& secret,
                                 const std::string& body)
    {
        return ask(zorbd.port(), post(body, json_type + "Authorization: Bearer " + secret + "\r\n"));
    }

    const test_support::TemporaryFolder m_folder;
};

TEST_F(Tokens, are_kept_as_hashes_in_a_file_of_their_owner)
{
    const std::string secret = add("reader");

    EXPECT_THAT(content(), HasSubstr("reader sha256:"));
    EXPECT_THAT(content(), Not(HasSubstr(secret)));
    EXPECT_EQ(std::filesystem::status(file()).permissions(), std::filesystem::perms(0600));
}

TEST_F(Tokens, may_call_what_their_patterns_stand_for)
{
    const std::string secret = add("reader", {"--methods", "sev*,echo"});
    const ZorbdProcess zorbd({"--token-file", file()});

    EXPECT_EQ(ask_with(zorbd, secret, call("seven")).status, 200);
    EXPECT_EQ(ask_with(zorbd, secret, call("echo")).status, 200);
    const HttpResponse refused = ask_with(zorbd, secret, call("fill", R"({"size": 3})"));
    EXPECT_EQ(refused.status, 403);
    EXPECT_THAT(refused.body, HasSubstr("-32004"));
    EXPECT_THAT(refused.body, HasSubstr("fill: the token 'reader' does not allow this method"));
}

TEST_F(Tokens, are_judged_for_each_call_of_a_batch)
{
    const std::string secret = add("reader", {"--methods", "seven"});
    const ZorbdProcess zorbd({"--token-file", file()});

    const HttpResponse mixed =
        ask_with(zorbd, secret, '[' + call("seven") + ',' + call("echo", "{}", "2") + ']');
    EXPECT_EQ(mixed.status, 200);
    EXPECT_THAT(mixed.body, HasSubstr(R"("result":7,"id":1)"));
    EXPECT_THAT(mixed.body, HasSubstr("-32004"));
    EXPECT_EQ(ask_with(zorbd, secret, '[' + call("echo") + ',' + call("fill") + ']').status, 403);
}

TEST_F(Tokens, refuse_a_notification_too)
{
    const std::string secret = add("reader", {"--methods", "seven"});
    const ZorbdProcess zorbd({"--token-file", file()});

    EXPECT_EQ(ask_with(zorbd, secret, R"({"jsonrpc":"2.0","method":"echo"})").status, 403);
    EXPECT_EQ(ask_with(zorbd, secret, R"({"jsonrpc":"2.0","method":"seven"})").status, 204);
}

TEST_F(Tokens, let_everyone_see_health_and_the_list_of_methods)
{
    const std::string secret = add("reader", {"--methods", "seven"});
    const ZorbdProcess zorbd({"--token-file", file()});
    const std::string authorization = "Authorization: Bearer " + secret + "\r\n";

    EXPECT_EQ(ask(zorbd.port(), get("/healthz", authorization)).status, 200);
    EXPECT_EQ(ask_with(zorbd, secret, call("rpc.discover")).status, 200);
    EXPECT_EQ(ask(zorbd.port(), get("/metrics", authorization)).status, 403);
    EXPECT_EQ(ask(zorbd.port(), get("/events", authorization)).status, 403);
}

TEST_F(Tokens, can_allow_pages)
{
    const std::string secret = add("monitor", {"--methods", "/metrics"});
    const ZorbdProcess zorbd({"--token-file", file()});

    EXPECT_EQ(ask(zorbd.port(), get("/metrics", "Authorization: Bearer " + secret + "\r\n")).status, 200);
    EXPECT_EQ(ask_with(zorbd, secret, call("seven")).status, 403);
}

TEST_F(Tokens, end_with_their_last_day)
{
    const std::string secret = add("old");
    std::string text = content();
    text.insert(text.rfind('\n'), " until=2025-12-31");
    write(text);
    const ZorbdProcess zorbd({"--token-file", file()});

    const HttpResponse refused = ask_with(zorbd, secret, call("seven"));

    EXPECT_EQ(refused.status, 401);
    EXPECT_THAT(refused.body, HasSubstr("the token 'old' has expired"));
    EXPECT_THAT(token({"list"}).output(), HasSubstr("until=2025-12-31 expired"));
}

TEST_F(Tokens, are_named_in_the_access_log)
{
    const std::string secret = add("reader");
    const std::string log = m_folder.path() / "access";
    ZorbdProcess zorbd({"--token-file", file(), "--access-log", log});

    ask_with(zorbd, secret, call("seven"));
    zorbd.terminate();

    std::ifstream stream(log);
    EXPECT_THAT(std::string(std::istreambuf_iterator<char>(stream), {}), HasSubstr(R"("token":"reader")"));
}

TEST_F(Tokens, are_read_again_on_sighup)
{
    const std::string first = add("first");
    ZorbdProcess zorbd({"--token-file", file()});
    const std::string second = add("second");
    EXPECT_EQ(ask_with(zorbd, second, call("seven")).status, 401);
    token({"remove", "first"});

    zorbd.signal(SIGHUP);
    ASSERT_TRUE(zorbd.wait_for_error_line("tokens have been read again"));

    EXPECT_EQ(ask_with(zorbd, second, call("seven")).status, 200);
    EXPECT_EQ(ask_with(zorbd, first, call("seven")).status, 401);
    EXPECT_THAT(zorbd.terminate(), Optional(0));
}

TEST_F(Tokens, stay_as_they_are_when_the_file_is_damaged)
{
    const std::string secret = add("reader");
    ZorbdProcess zorbd({"--token-file", file()});
    write("reader sha256:12\n");

    zorbd.signal(SIGHUP);

    EXPECT_THAT(zorbd.wait_for_error_line("stays in use"),
                Optional(HasSubstr(file() + ", line 1: the hash must be")));
    EXPECT_EQ(ask_with(zorbd, secret, call("seven")).status, 200);
}

TEST_F(Tokens, have_names_of_their_own)
{
    add("reader");

    const ChildProcess again = token({"add", "reader"});

    EXPECT_THAT(again.error_output(), HasSubstr("there is a token 'reader' in " + file() + " already"));
    EXPECT_EQ(again.output(), "");
}

struct BadLine
{
    const char* name;
    std::string line;
    std::string complaint;
};

const std::string good_hash = "sha256:" + std::string(64, 'a');

class BadTokenLine : public Tokens, public testing::WithParamInterface<BadLine>
{
};

TEST_P(BadTokenLine, keeps_zorbd_from_starting)
{
    write("# a comment\n\n" + GetParam().line + '\n');
    ChildProcess zorbd = start_zorbd(
        {"--listen", "127.0.0.1:0", "--plugin", plugin("served_methods"), "--token-file", file()});

    EXPECT_THAT(zorbd.wait_for_exit(), Optional(1));
    EXPECT_THAT(zorbd.error_output(), HasSubstr(file() + ", line 3: " + GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    tokens, BadTokenLine,
    testing::Values(BadLine{"no_hash", "reader methods=*", "the hash must be"},
                    BadLine{"wrong_digits", "reader sha256:" + std::string(64, 'G'), "the hash must be"},
                    BadLine{"odd_name", "rea/der " + good_hash, "a token's name has"},
                    BadLine{"unknown_word", "reader " + good_hash + " colour=red", "'colour=red' is neither"},
                    BadLine{"no_methods", "reader " + good_hash + " methods=", "methods must be patterns"},
                    BadLine{"many_stars", "reader " + good_hash + " methods=*a*b*c*",
                            "'*a*b*c*' is no pattern"},
                    BadLine{"odd_day", "reader " + good_hash + " until=tomorrow", "'tomorrow' is no day"}),
    [](const auto& line) { return line.param.name; });

TEST_F(Tokens, with_one_name_twice_are_refused)
{
    write("reader " + good_hash + "\nreader " + good_hash + "\n");
    ChildProcess zorbd = start_zorbd(
        {"--listen", "127.0.0.1:0", "--plugin", plugin("served_methods"), "--token-file", file()});

    EXPECT_THAT(zorbd.wait_for_exit(), Optional(1));
    EXPECT_THAT(zorbd.error_output(), HasSubstr("line 2: there is a token 'reader' already"));
}

TEST_F(Tokens, are_not_added_to_a_single_secret)
{
    write("a-token-of-some-length\n");

    EXPECT_THAT(token({"add", "reader"}).error_output(), HasSubstr("holds a single secret"));
    EXPECT_EQ(content(), "a-token-of-some-length\n");
}

} // namespace
