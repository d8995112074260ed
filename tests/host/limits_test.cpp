// SPDX-License-Identifier: Apache-2.0
// Each limit of a running zorbd, from both sides.
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
using host_test::post;
using host_test::ZorbdProcess;
using testing::HasSubstr;

std::string hold(const Fifo& fifo)
{
    return post(call("hold", R"({"fifo":")" + fifo.path() + R"("})"));
}

std::string padded_call(std::size_t length)
{
    const std::string bare = call("echo", R"([""])");
    return call("echo", R"([")" + std::string(length - bare.size(), 'x') + R"("])");
}

/// The server learns a little later that a connection has gone.
bool is_admitted_in_time(std::uint16_t port)
{
    const auto deadline = std::chrono::steady_clock::now() + test_support::event_deadline;
    while (std::chrono::steady_clock::now() < deadline)
        if (ask(port, post(call("seven"))).status == 200)
            return true;
    return false;
}

TEST(limits, body)
{
    const ZorbdProcess zorbd({"--max-body", "1000"});

    EXPECT_EQ(ask(zorbd.port(), post(padded_call(1000))).status, 200);
    EXPECT_EQ(ask(zorbd.port(), post(padded_call(1001))).status, 413);
}

TEST(limits, body_that_is_refused_by_its_announced_length_is_not_waited_for)
{
    const ZorbdProcess zorbd({"--max-body", "1000"});
    HttpConnection connection(zorbd.port());

    connection.send("POST / HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: "
                    "1001\r\n\r\n");

    EXPECT_EQ(connection.receive().status, 413);
    connection.wait_closed();
}

TEST(limits, body_in_chunks)
{
    const ZorbdProcess zorbd({"--max-body", "1000"});
    HttpConnection connection(zorbd.port());
    const std::string chunk = "200\r\n" + std::string(512, ' ') + "\r\n";

    connection.send("POST / HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                    "application/json\r\nTransfer-Encoding: chunked\r\n\r\n" +
                    chunk + chunk + "0\r\n\r\n");

    EXPECT_EQ(connection.receive().status, 413);
}

TEST(limits, depth)
{
    const ZorbdProcess zorbd({"--max-depth", "3"});

    EXPECT_THAT(ask(zorbd.port(), post(call("seven", "[[1]]"))).body, HasSubstr(R"("result":7)"));
    EXPECT_THAT(ask(zorbd.port(), post(call("seven", "[[[1]]]"))).body, HasSubstr("nesting too deep"));
}

TEST(limits, depth_that_is_hostile)
{
    const ZorbdProcess zorbd({"--max-depth", "1000"});

    const auto response = ask(zorbd.port(), post(std::string(1000000, '[')));

    EXPECT_THAT(response.body, HasSubstr("nesting too deep"));
}

TEST(limits, batch)
{
    const ZorbdProcess zorbd({"--max-batch", "2"});
    const std::string one = call("seven");

    EXPECT_THAT(ask(zorbd.port(), post('[' + one + ',' + one + ']')).body, HasSubstr(R"("result":7)"));
    EXPECT_THAT(ask(zorbd.port(), post('[' + one + ',' + one + ',' + one + ']')).body,
                HasSubstr("longer than the limit of 2"));
}

TEST(limits, connections_in_all)
{
    const ZorbdProcess zorbd({"--max-connections", "2"});
    HttpConnection first(zorbd.port());
    HttpConnection second(zorbd.port());
    for (HttpConnection* connection : {&first, &second}) {
        connection->send(post(call("seven")));
        EXPECT_EQ(connection->receive().status, 200);
    }

    HttpConnection(zorbd.port()).wait_closed();

    first.send(post(call("seven")));
    EXPECT_EQ(first.receive().status, 200);
}

TEST(limits, connections_of_one_address)
{
    const ZorbdProcess zorbd({"--max-connections-per-address", "1"});
    {
        HttpConnection only(zorbd.port());
        only.send(post(call("seven")));
        only.receive();
        HttpConnection(zorbd.port()).wait_closed();
        only.send(post(call("seven")));
        EXPECT_EQ(only.receive().status, 200);
    }

    EXPECT_TRUE(is_admitted_in_time(zorbd.port()));
}

TEST(limits, idle_time)
{
    const ZorbdProcess zorbd({"--idle-timeout", "0.2"});
    HttpConnection silent(zorbd.port());
    HttpConnection used(zorbd.port());
    used.send(post(call("seven")));
    used.receive();

    silent.wait_closed();
    used.wait_closed();
}

TEST(limits, idle_time_does_not_cut_a_call_that_runs)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--idle-timeout", "0.1", "--request-timeout", "0.1"});
    HttpConnection calling(zorbd.port());
    calling.send(hold(fifo));
    ASSERT_TRUE(zorbd.wait_for_line("holding"));
    HttpConnection(zorbd.port()).wait_closed(); // so that the time has passed for the call too

    fifo.release();

    EXPECT_THAT(calling.receive().body, HasSubstr(R"("result":1)"));
}

TEST(limits, request_time_for_a_sender_that_stops)
{
    const ZorbdProcess zorbd({"--request-timeout", "0.2"});
    HttpConnection in_the_head(zorbd.port());
    HttpConnection in_the_body(zorbd.port());

    in_the_head.send("POST / HTTP/1.1\r\nHost:");
    in_the_body.send(
        "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: 9\r\n\r\n{");

    in_the_head.wait_closed();
    in_the_body.wait_closed();
}

TEST(limits, request_time_for_a_sender_that_dribbles)
{
    const ZorbdProcess zorbd({"--request-timeout", "0.3", "--idle-timeout", "60"});
    HttpConnection connection(zorbd.port());
    connection.send("POST / HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: "
                    "100000\r\n\r\n");
    const auto begin = std::chrono::steady_clock::now();

    EXPECT_THROW(
        {
            while (std::chrono::steady_clock::now() - begin < test_support::event_deadline) {
                connection.send(" ");
                connection.is_quiet(std::chrono::milliseconds(10));
            }
        },
        std::exception);
}

TEST(limits, request_time_for_a_client_that_does_not_take_its_response)
{
    const ZorbdProcess zorbd({"--request-timeout", "0.5"});
    HttpConnection connection(zorbd.port());

    connection.send(post(call("fill", R"({"size":33554432})"))); // more than the sockets hold

    connection.wait_cut_unread();
    EXPECT_THROW(connection.receive(), std::runtime_error) << "the response is not whole";
}

TEST(limits, outstanding_work)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--max-outstanding", "1"});
    HttpConnection running(zorbd.port());
    running.send(hold(fifo));
    ASSERT_TRUE(zorbd.wait_for_line("holding"));

    const auto refused = ask(zorbd.port(), post(call("seven")));

    EXPECT_EQ(refused.status, 503);
    EXPECT_THAT(refused.head, HasSubstr("\r\nretry-after: 1\r\n"));
    EXPECT_THAT(refused.body, JsonEq(R"({"jsonrpc":"2.0","error":{"code":-32003,"message":"Server busy",
                                         "data":"too many calls are outstanding"},"id":null})"));
    EXPECT_EQ(ask(zorbd.port(), get("/healthz")).status, 200);
    fifo.release();
    EXPECT_EQ(running.receive().status, 200);
    EXPECT_EQ(ask(zorbd.port(), post(call("seven"))).status, 200);
}

TEST(limits, a_slow_call_holds_nobody_else_up)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--threads", "2"});
    HttpConnection slow(zorbd.port());
    slow.send(hold(fifo));
    ASSERT_TRUE(zorbd.wait_for_line("holding"));

    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(ask(zorbd.port(), post(call("seven"))).status, 200);

    fifo.release();
    EXPECT_EQ(slow.receive().status, 200);
}

TEST(limits, a_slow_call_holds_no_connection_up_that_was_there_before)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--threads", "2"});
    std::vector<HttpConnection> others; // so many that some share their I/O threads with the slow one
    others.reserve(24);
    while (others.size() < 24)
        others.emplace_back(zorbd.port());
    HttpConnection slow(zorbd.port());
    slow.send(hold(fifo));
    ASSERT_TRUE(zorbd.wait_for_line("holding"));

    for (HttpConnection& other : others) {
        other.send(post(call("seven")));
        EXPECT_EQ(other.receive().status, 200);
    }

    fifo.release();
    EXPECT_EQ(slow.receive().status, 200);
}

TEST(limits, several_slow_calls_at_once_hold_nobody_else_up)
{
    Fifo fifo;
    ZorbdProcess zorbd({"--threads", "3"});
    std::vector<HttpConnection> slow;
    for (int i = 0; i < 2; ++i) {
        slow.emplace_back(zorbd.port());
        slow.back().send(hold(fifo));
        ASSERT_TRUE(zorbd.wait_for_line("holding"));
    }

    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(ask(zorbd.port(), post(call("seven"))).status, 200);

    fifo.release();
    for (HttpConnection& connection : slow)
        EXPECT_EQ(connection.receive().status, 200);
}

TEST(limits, a_client_that_answers_at_once_with_its_next_call_finds_room)
{
    const ZorbdProcess zorbd({"--max-outstanding", "1"});
    HttpConnection connection(zorbd.port());

    for (int i = 0; i < 2000; ++i) {
        connection.send(post(call("seven")));
        ASSERT_EQ(connection.receive().status, 200);
    }
}

} // namespace
