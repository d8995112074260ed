// SPDX-License-Identifier: Apache-2.0
// Server and host daemon on two hosts, and what becomes of calls when the network between them goes away.

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "linked_hosts.h"
#include "remote_host.h"
#include "steady_calls.h"
#include "support/demo_calls.h"

namespace {

using test_support::ChildProcess;
using test_support::demo_calls;
using test_support::DemoCall;
using test_support::event_deadline;
using testing::Ge;
using testing::Gt;
using testing::HasSubstr;
using testing::Optional;
using two_hosts::Discovery;
using two_hosts::LinkedHosts;
using two_hosts::RemoteHost;
using two_hosts::Side;
using two_hosts::start_server;
using two_hosts::SteadyCalls;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr const char* steady_method = "network_get_info";
constexpr const char* steady_reply = "async_network_get_info returns: ";

/// Calls until a call of its own is answered; gives how long that took.
Clock::duration time_to_an_answer(RemoteHost& host)
{
    const auto start = Clock::now();
    while (Clock::now() - start < event_deadline) {
        host.call("advertising", R"({"on": "false"})");
        if (host.process().wait_for_line("async_set_advertising returns:", 50ms))
            break;
    }
    return Clock::now() - start;
}

/// Waits for so many replies; gives how many there are.
int wait_for_replies(RemoteHost& host, int count)
{
    const auto deadline = Clock::now() + event_deadline;
    while (host.count(steady_reply) < count && Clock::now() < deadline)
        host.process().wait_for_line(steady_reply, 1s);
    return host.count(steady_reply);
}

/// The numbers of a line such as "done accepted=3 replied=2".
int number(const std::string& line, const std::string& name)
{
    const std::string label = " " + name + "=";
    const std::size_t place = line.find(label);
    return place == std::string::npos ? -1 : std::stoi(line.substr(place + label.size()));
}

/// How many calls it has reported as given up.
int reported_given_up(const ChildProcess& client)
{
    int total = 0;
    const std::string text = client.error_output();
    const std::string label = "gave up ";
    for (std::size_t at = text.find(label); at != std::string::npos; at = text.find(label, at + 1))
        total += std::stoi(text.substr(at + label.size()));
    return total;
}

class TwoHosts : public testing::TestWithParam<Discovery>
{
protected:
    void SetUp() override
    {
        try {
            m_hosts = std::make_unique<LinkedHosts>(GetParam());
        } catch (const two_hosts::NoNamespaces& obstacle) {
            GTEST_SKIP() << obstacle.what();
        }
    }

    // The time is what is tested: nothing shall happen that ends it.
    void without_link_for(std::chrono::seconds duration) const
    {
        m_hosts->take_link_down();
        std::this_thread::sleep_for(duration);
        m_hosts->bring_link_up();
    }

    std::unique_ptr<LinkedHosts> m_hosts;
};

TEST_P(TwoHosts, answer_every_method_across_the_network)
{
    const ChildProcess server = start_server(*m_hosts);
    RemoteHost host(*m_hosts);
    const std::vector<DemoCall> calls = demo_calls();
    ASSERT_EQ(calls.size(), 14U);

    for (const DemoCall& call : calls) {
        SCOPED_TRACE(call.method);
        EXPECT_PRED1(two_hosts::is_accepted, host.call(call.method, call.params));
        EXPECT_THAT(host.process().wait_for_line("returns: "), Optional(HasSubstr(call.reply_line)));
    }
}

TEST_P(TwoHosts, lose_no_call_while_the_network_is_away_for_3_s)
{
    const ChildProcess server = start_server(*m_hosts);
    RemoteHost host(*m_hosts);
    SteadyCalls calls(host, steady_method);
    ASSERT_THAT(wait_for_replies(host, 10), Ge(10));

    const int accepted_before = calls.accepted();
    without_link_for(3s);
    const int accepted_meanwhile = calls.accepted() - accepted_before;
    const auto wait = time_to_an_answer(host);
    calls.stop();

    EXPECT_THAT(accepted_meanwhile, Gt(0));
    EXPECT_LE(wait, 5s);
    EXPECT_EQ(wait_for_replies(host, calls.accepted()), calls.accepted());
}

TEST_P(TwoHosts, lose_no_call_in_30_s_without_network_but_those_that_they_report_as_given_up)
{
    const ChildProcess server = start_server(*m_hosts);
    RemoteHost host(*m_hosts);
    ChildProcess drill_server = m_hosts->start(Side::server, {DRILL_SERVER});
    ASSERT_TRUE(drill_server.wait_for_line("serving"));
    // A client whose requests are given up sooner than that.
    ChildProcess drill_client = m_hosts->start(
        Side::client, {DRILL_CLIENT, "load", "--window", "100000", "--pause", "5000", "--timeout", "20000"});
    ASSERT_TRUE(drill_client.wait_for_line("bound"));
    SteadyCalls calls(host, steady_method);
    ASSERT_THAT(wait_for_replies(host, 10), Ge(10));

    without_link_for(30s);
    const auto wait = time_to_an_answer(host);
    calls.stop();
    drill_client.close_input();

    EXPECT_LE(wait, 5s);
    EXPECT_EQ(wait_for_replies(host, calls.accepted()), calls.accepted());
    const std::string done = drill_client.wait_for_line("done").value_or("");
    EXPECT_THAT(drill_client.wait_for_exit(), Optional(0));
    EXPECT_THAT(number(done, "replied"), Gt(0)) << done;
    EXPECT_EQ(number(done, "wrong"), 0) << done;
    EXPECT_EQ(number(done, "replied") + number(done, "given_up"), number(done, "accepted")) << done;
    EXPECT_EQ(reported_given_up(drill_client), number(done, "given_up")) << done;
}

INSTANTIATE_TEST_SUITE_P(Discovery, TwoHosts, testing::Values(Discovery::multicast, Discovery::peers),
                         [](const auto& one) {
                             return one.param == Discovery::multicast ? "with_multicast" : "with_peers";
                         });

} // namespace
