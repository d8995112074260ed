// SPDX-License-Identifier: Apache-2.0
// Calls that take too long, or never end.
#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

#include "fifo.h"
#include "json_matchers.h"
#include "zorbd_process.h"

namespace {

using host_test::ask;
using host_test::call;
using host_test::Fifo;
using host_test::get;
using host_test::HttpConnection;
using host_test::JsonEq;
using host_test::plugin;
using host_test::post;
using host_test::ZorbdProcess;
using testing::AllOf;
using testing::HasSubstr;

std::string hold(const Fifo& fifo, const std::string& id = "1")
{
    return call("hold", R"({"fifo":")" + fifo.path() + R"("})", id);
}

TEST(stuck_calls, are_answered_with_the_name_of_their_method)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--call-timeout", "0.3"});

    const auto response = ask(zorbd.port(), post(hold(fifo, R"("a")")));

    EXPECT_EQ(response.status, 200);
    EXPECT_THAT(response.body, JsonEq(R"({"jsonrpc":"2.0","error":{"code":-32001,
        "message":"Remote service timed out",
        "data":"hold: no answer within 0.3 s (--call-timeout); the call is left to end"},"id":"a"})"));
    fifo.release();
    EXPECT_TRUE(zorbd.wait_for_line("released"));
}

TEST(stuck_calls, of_a_batch_leave_the_answers_before_them)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--call-timeout", "0.3"});

    const auto response = ask(zorbd.port(), post('[' + call("seven") + ',' + hold(fifo, "2") + ',' +
                                                 call("seven", "{}", "3") + ']'));

    EXPECT_THAT(response.body, AllOf(HasSubstr(R"({"jsonrpc":"2.0","result":7,"id":1})"),
                                     testing::ContainsRegex(R"("data":"hold: no answer[^}]*},"id":2)"),
                                     testing::ContainsRegex(R"("data":"seven: no answer[^}]*},"id":3)")));
    fifo.release();
}

TEST(stuck_calls, are_told_of_until_they_end)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--call-timeout", "0.3"});
    ask(zorbd.port(), post(hold(fifo)));

    const auto health = ask(zorbd.port(), get("/healthz"));
    const auto metrics = ask(zorbd.port(), get("/metrics"));
    fifo.release();
    ASSERT_TRUE(zorbd.wait_for_line("released"));

    EXPECT_EQ(health.status, 503);
    EXPECT_THAT(health.body, AllOf(HasSubstr(R"("status":"stuck")"), HasSubstr(R"("stuck":1)")));
    EXPECT_THAT(metrics.body, HasSubstr("zorbd_plugin_stuck_calls{plugin="));
    int status = 503;
    for (int i = 0; i < 10000 && status != 200; ++i) // it has printed its line a little before it returns
        status = ask(zorbd.port(), get("/healthz")).status;
    EXPECT_EQ(status, 200);
}

TEST(stuck_calls, of_one_plugin_do_not_silence_another)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--threads", "2", "--plugin", plugin("strange_results")});
    ASSERT_TRUE(zorbd.says("strange_results.so is bound"));
    std::vector<HttpConnection> stuck;
    stuck.reserve(12);
    for (int i = 0; i < 12; ++i) {
        stuck.emplace_back(zorbd.port());
        stuck.back().send(post(hold(fifo)));
    }
    ASSERT_TRUE(zorbd.wait_for_line("holding"));

    for (int i = 0; i < 20; ++i)
        EXPECT_THAT(ask(zorbd.port(), post(call("no_text"))).body, HasSubstr("no_text"));

    for (HttpConnection& connection : stuck)
        connection.reset();
}

/// Waits for a page to say something.
bool comes_to_say(const ZorbdProcess& zorbd, const std::string& page, const std::string& text)
{
    const auto end = std::chrono::steady_clock::now() + test_support::event_deadline;
    while (std::chrono::steady_clock::now() < end)
        if (ask(zorbd.port(), get(page)).body.find(text) != std::string::npos)
            return true;
    return false;
}

TEST(stuck_calls, keep_those_that_wait_for_them_no_longer_than_the_limit)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--threads", "1", "--call-timeout", "2"});
    std::vector<HttpConnection> waiting;
    for (int i = 0; i < 4;
         ++i) { // on all I/O threads; after a slow call they leave the next one to the workers
        waiting.emplace_back(zorbd.port());
        waiting.back().send(post(call("linger", R"({"ms":20})")));
        waiting.back().receive();
    }
    HttpConnection stuck(zorbd.port());
    stuck.send(post(hold(fifo)));
    ASSERT_TRUE(zorbd.wait_for_line("holding"));
    for (HttpConnection& connection : waiting)
        connection.send(post(call("seven")));

    for (HttpConnection& connection : waiting)
        EXPECT_THAT(connection.receive().body,
                    HasSubstr("seven: no answer within 2 s (--call-timeout); the call was not begun"));

    EXPECT_TRUE(comes_to_say(zorbd, "/metrics", "\nzorbd_calls_outstanding 1\n")) << "they keep their places";
    EXPECT_TRUE(comes_to_say(zorbd, "/metrics", R"(zorbd_calls_total{method="seven",code="-32001"} 4)"));
    fifo.release();
    ASSERT_TRUE(zorbd.wait_for_line("released"));
    for (HttpConnection& connection : waiting) { // each has had one answer, so this one is the next
        connection.send(post(call("seven", "{}", "9")));
        EXPECT_THAT(connection.receive().body, JsonEq(R"({"jsonrpc":"2.0","result":7,"id":9})"));
    }
}

TEST(stuck_calls, are_answered_once_whether_they_end_in_time_or_just_not)
{
    constexpr int rounds = 10;
    constexpr int clients = 8;
    ZorbdProcess zorbd({"--threads", "2", "--call-timeout", "0.06", "--max-outstanding", "64"});
    std::vector<HttpConnection> calling;
    for (int i = 0; i < clients; ++i)
        calling.emplace_back(zorbd.port());

    for (int round = 0; round < rounds; ++round) {
        for (int i = 0; i < clients; ++i) // four turns of two threads, of which about three come in time
            calling[static_cast<std::size_t>(i)].send(
                post(call("linger", R"({"ms":20})", std::to_string(round * clients + i))));
        for (int i = 0; i < clients; ++i)
            EXPECT_THAT(calling[static_cast<std::size_t>(i)].receive().body,
                        AllOf(testing::ContainsRegex(R"("result":1|"code":-32001|"code":-32003)"),
                              HasSubstr(R"("id":)" + std::to_string(round * clients + i) + '}')));
    }

    EXPECT_TRUE(comes_to_say(zorbd, "/metrics", "\nzorbd_calls_outstanding 0\n"));
    EXPECT_TRUE(comes_to_say(zorbd, "/healthz", R"("status":"ok")"));
}

TEST(stuck_calls, that_wait_for_a_thread_get_one_when_there_is_one)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--threads", "1"});
    std::vector<HttpConnection> calling;
    calling.reserve(6);
    for (int i = 0; i < 6; ++i) {
        calling.emplace_back(zorbd.port());
        calling.back().send(post(call("linger", R"({"ms":20})")));
    }

    for (HttpConnection& connection : calling)
        EXPECT_THAT(connection.receive().body, HasSubstr(R"("result":1)"));
}

} // namespace
