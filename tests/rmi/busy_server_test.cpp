// SPDX-License-Identifier: Apache-2.0
// A server whose one thread is busy, or held up at the gate.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>

#include "rmi_test.h"

namespace {

using drill::Client;
using drill::Proxy;
using drill::Server;
using drill::Tally;
using test_support::ChildProcess;
namespace rmi = org::opensplice::DDS_RMI;

class BusyServer : public drill::RmiTest
{
protected:
    static bool call_gated_text(const Proxy& proxy, const std::shared_ptr<Tally>& tally, std::size_t bytes)
    {
        const rmi::shared_ptr<drill::GatedTextHandler> handler(
            new drill::GatedTextHandler(tally, static_cast<DDS::ULong>(bytes)));
        try {
            proxy->async_gated_text(DDS::string_dup(std::string(bytes, 'x').c_str()), handler.get());
            return true;
        } catch (const rmi::TIMEOUT&) {
            return false;
        }
    }

    /// Waits until half a second passes without a further run of "work"; gives how many there were.
    static DDS::ULong runs_of_work_until_they_end(const Proxy& proxy)
    {
        const auto deadline = std::chrono::steady_clock::now() + test_support::event_deadline;
        DDS::ULong before = 0;
        DDS::ULong now = proxy->worked();
        do {
            Tally().wait_for_replies(1, std::chrono::milliseconds(500));
            before = now;
            now = proxy->worked();
        } while (now != before && std::chrono::steady_clock::now() < deadline);
        return now;
    }
};

TEST_F(BusyServer, is_bound_to_and_gives_a_new_client_its_turn_long_before_what_another_has_queued)
{
    constexpr std::size_t queued = 1000;
    Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    for (std::size_t i = 0; i < queued; ++i)
        call_gated(proxy, tally, static_cast<DDS::Long>(i));
    server.expect_at_gate(1);

    Client other({"once"});
    EXPECT_TRUE(other.wait_for_line("called"));
    bool answered = false;
    for (std::size_t passed = 0; passed < queued / 2 && !answered; ++passed) {
        server.process().write("pass 1\n");
        answered = other.wait_for_line("answered", std::chrono::milliseconds(100)).has_value();
    }

    EXPECT_TRUE(answered);
    EXPECT_LT(tally->replies(), queued);
    server.open_gate();
    EXPECT_TRUE(tally->wait_for_replies(queued));
}

TEST_F(BusyServer, takes_no_more_than_its_limit_and_keeps_all_that_it_has_taken)
{
    constexpr std::size_t limit_mib = 4;
    constexpr std::size_t bytes = 100'000;
    constexpr std::size_t on_their_way = 4 << 20; // in Cyclone's own queues
    Server server({"--queue-mib", std::to_string(limit_mib)});
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();

    std::size_t accepted = 0;
    while (accepted < 1000 && call_gated_text(proxy, tally, bytes))
        ++accepted;

    EXPECT_GT(accepted, 1U);
    EXPECT_LE(accepted * bytes, (limit_mib << 20) + on_their_way);
    server.open_gate();
    EXPECT_TRUE(tally->wait_for_replies(accepted));
    EXPECT_EQ(tally->wrong(), 0U);
    EXPECT_EQ(proxy->echo(7), 7);
}

TEST_F(BusyServer, is_sent_no_call_that_it_could_never_take)
{
    const Server server({"--queue-mib", "4"}); // one for each client
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();

    EXPECT_THROW(call_gated_text(proxy, tally, std::size_t{2} << 20U), rmi::BAD_PARAM);

    EXPECT_EQ(proxy->echo(7), 7);
}

TEST_F(BusyServer, does_not_run_what_a_dead_client_has_left)
{
    constexpr DDS::ULong left = 10'000;
    const auto lease = drill::with_lease(domain(), "1s");
    const Server server({}, lease);
    const Proxy proxy = find_proxy();
    ChildProcess client({DRILL_CLIENT, "obey"}, lease);
    client.write("queue " + std::to_string(left) + " 10\n");
    ASSERT_TRUE(client.wait_for_line("queued"));

    client.signal(SIGKILL);

    EXPECT_LT(runs_of_work_until_they_end(proxy), left);
}

TEST_F(BusyServer, does_not_run_what_its_caller_has_given_up)
{
    Server server;
    const Proxy proxy = find_proxy();
    const auto gated = std::make_shared<Tally>();
    const auto overdue = std::make_shared<Tally>();
    call_gated(proxy, gated, 1);
    server.expect_at_gate(1);

    proxy->setTimeout(300);
    for (DDS::Long i = 0; i < 10; ++i)
        proxy->async_work(0, rmi::shared_ptr<drill::WorkHandler>(new drill::WorkHandler(overdue, 0)).get());
    EXPECT_TRUE(overdue->wait_for_releases(10));
    proxy->setTimeout(60'000);
    server.open_gate();

    EXPECT_EQ(proxy->worked(), 0U);
    EXPECT_TRUE(gated->wait_for_replies(1));
}

} // namespace
