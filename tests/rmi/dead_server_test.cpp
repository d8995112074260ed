// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>

#include "rmi_test.h"

namespace {

using drill::Proxy;
using drill::Server;
using drill::Tally;
using Clock = std::chrono::steady_clock;
namespace rmi = org::opensplice::DDS_RMI;

class DeadServer : public drill::RmiTest
{
protected:
    /// What a server is started with whose death shall show soon.
    test_support::ChildProcess::Environment short_lease() const { return drill::with_lease(domain(), "3s"); }

    /// Calls until one is answered; false when none is within the time for events.
    static bool is_answered_again(const Proxy& proxy)
    {
        proxy->setTimeout(300);
        const auto deadline = Clock::now() + test_support::event_deadline;
        while (Clock::now() < deadline) {
            try {
                return proxy->echo(7) == 7;
            } catch (const rmi::TIMEOUT&) {
                // the old server may still be believed in
            } catch (const rmi::SERVICE_NOT_FOUND&) {
                wait_a_moment();
            }
        }
        return false;
    }

    /// Asks until the server that answers has run stamp so often; false when none has within the time for
    /// events.
    static bool runs_become(const Proxy& proxy, DDS::ULong runs)
    {
        const auto deadline = Clock::now() + test_support::event_deadline;
        while (is_answered_again(proxy) && Clock::now() < deadline) {
            try {
                if (proxy->runs() == runs)
                    return true;
            } catch (const rmi::SystemException&) {
                // it has ended meanwhile
            }
            wait_a_moment();
        }
        return false;
    }

    /// Calls until the failure is that no server is there, and gives its message.
    static std::optional<std::string> message_of_not_found(const Proxy& proxy)
    {
        proxy->setTimeout(300);
        const auto deadline = Clock::now() + test_support::event_deadline;
        while (Clock::now() < deadline) {
            try {
                proxy->echo(7);
            } catch (const rmi::TIMEOUT&) {
                // it is still believed in
            } catch (const rmi::SERVICE_NOT_FOUND& error) {
                return error.what();
            }
        }
        return std::nullopt;
    }

    static bool call_echo_text(const Proxy& proxy, const std::shared_ptr<Tally>& tally,
                               const std::string& text)
    {
        const rmi::shared_ptr<drill::EchoTextHandler> handler(new drill::EchoTextHandler(tally));
        try {
            proxy->async_echo_text(DDS::string_dup(text.c_str()), handler.get());
            return true;
        } catch (const rmi::TIMEOUT&) {
            return false;
        }
    }

private:
    // Between attempts that fail at once.
    static void wait_a_moment() { Tally().wait_for_replies(1, std::chrono::milliseconds(20)); }
};

TEST_F(DeadServer, costs_its_outstanding_requests_no_more_than_their_timeout)
{
    constexpr DDS::Long calls = 1000;
    Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    proxy->setTimeout(2000);
    for (DDS::Long i = 0; i < calls; ++i)
        call_gated(proxy, tally, i);
    server.expect_at_gate(1);

    server.kill();

    EXPECT_TRUE(tally->wait_for_releases(calls));
    EXPECT_EQ(tally->replies(), 0U);
}

TEST_F(DeadServer, makes_calls_fail_at_once_with_the_services_name_when_it_is_known_to_be_gone)
{
    Server server({}, short_lease());
    const Proxy proxy = find_proxy();
    EXPECT_EQ(proxy->echo(7), 7);

    server.kill();

    const auto message = message_of_not_found(proxy);
    ASSERT_TRUE(message);
    EXPECT_NE(message->find("'drill'"), std::string::npos) << *message;
    const auto start = Clock::now();
    EXPECT_THROW(proxy->async_echo(1, nullptr), rmi::SystemException);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
}

TEST_F(DeadServer, that_ended_by_itself_makes_calls_fail_as_well)
{
    auto server = std::make_unique<Server>();
    const Proxy proxy = find_proxy();

    server.reset();

    EXPECT_TRUE(message_of_not_found(proxy));
}

TEST_F(DeadServer, that_is_started_again_answers_the_proxies_that_exist)
{
    constexpr int rounds = 3;
    auto server = std::make_unique<Server>();
    const Proxy proxy = find_proxy();

    for (int round = 0; round < rounds; ++round) {
        EXPECT_TRUE(is_answered_again(proxy));
        server->kill();
        server = std::make_unique<Server>();
    }
    EXPECT_TRUE(is_answered_again(proxy));
}

TEST_F(DeadServer, that_is_started_again_leaves_the_requests_of_the_old_one_to_their_timeout)
{
    constexpr DDS::Long calls = 100;
    auto server = std::make_unique<Server>();
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    proxy->setTimeout(5000);
    for (DDS::Long i = 0; i < calls; ++i)
        call_gated(proxy, tally, i);
    server->expect_at_gate(1);

    server->kill();
    server = std::make_unique<Server>();
    server->open_gate();

    EXPECT_TRUE(is_answered_again(proxy));
    EXPECT_TRUE(tally->wait_for_releases(calls));
    EXPECT_EQ(tally->replies(), 0U);
}

// Six writers with something that nobody acknowledges: to wait a second for each would show.
TEST_F(DeadServer, that_is_started_again_does_not_hold_up_calls_when_the_old_requests_are_given_up)
{
    constexpr std::size_t lost = 6;
    constexpr int calls_afterwards = 100;
    constexpr std::chrono::seconds longest_wait{3};
    auto server = std::make_unique<Server>();
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    EXPECT_EQ(proxy->echo(7), 7);
    server->kill();
    proxy->setTimeout(3000);
    call_echo(proxy, tally, 1);
    call_gated(proxy, tally, 1);
    call_echo_text(proxy, tally, "text");
    proxy->async_note_red(1, new drill::NoteRedHandler(tally, 1));
    proxy->async_note_green(1, new drill::NoteGreenHandler(tally, 1));
    proxy->async_note_blue(1, new drill::NoteBlueHandler(tally, 1));
    server = std::make_unique<Server>();
    EXPECT_TRUE(is_answered_again(proxy));
    proxy->setTimeout(60'000);

    auto longest = Clock::duration::zero();
    for (int afterwards = 0; afterwards < calls_afterwards;) {
        const auto start = Clock::now();
        EXPECT_EQ(proxy->echo(7), 7);
        longest = std::max(longest, Clock::now() - start);
        afterwards += tally->releases() == lost ? 1 : 0;
    }

    EXPECT_EQ(tally->replies(), 0U);
    EXPECT_LT(longest, longest_wait);
}

TEST_F(DeadServer, is_replaced_by_another_instance_for_a_proxy_of_any)
{
    auto first = std::make_unique<Server>(std::vector<std::string>{"--instance", "1"}, short_lease());
    const Proxy proxy = find_proxy();
    const Server second({"--instance", "2"});
    // The second is there for everybody once it is there for a new proxy.
    find_proxy(2);

    first->kill();

    EXPECT_TRUE(is_answered_again(proxy));
}

TEST_F(DeadServer, leaves_its_clients_to_an_older_one_of_the_same_instance_that_still_runs)
{
    const Server older;
    const Proxy proxy = find_proxy();
    proxy->stamp(1, 1);
    auto newer = std::make_unique<Server>();
    ASSERT_TRUE(runs_become(proxy, 0)); // the newer one's

    newer.reset();

    EXPECT_TRUE(runs_become(proxy, 1));
}

TEST_F(DeadServer, does_not_hold_up_calls_to_another_instance)
{
    constexpr int calls = 500;
    Server first({"--instance", "1"});
    const Server second({"--instance", "2"});
    const Proxy to_first = find_proxy(1);
    const Proxy to_second = find_proxy(2);
    const std::string text(10'000, 'x');
    const auto first_tally = std::make_shared<Tally>();
    const auto second_tally = std::make_shared<Tally>();

    first.kill();
    while (call_echo_text(to_first, first_tally, text)) {
    }
    for (DDS::Long i = 0; i < calls; ++i)
        call_echo(to_second, second_tally, i);

    EXPECT_TRUE(second_tally->wait_for_replies(calls));
    EXPECT_EQ(first_tally->replies(), 0U);
}

TEST_F(DeadServer, that_is_only_stopped_blocks_calls_when_its_queues_are_full_and_loses_none)
{
    // One second, with room for rounding.
    constexpr std::chrono::milliseconds blocking_time{990};
    const std::string text(10'000, 'x');
    Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    EXPECT_EQ(proxy->echo(7), 7);

    server.process().signal(SIGSTOP);
    std::size_t accepted = 0;
    auto start = Clock::now();
    while (call_echo_text(proxy, tally, text)) {
        ++accepted;
        start = Clock::now();
    }
    const auto blocked = Clock::now() - start;
    server.process().signal(SIGCONT);

    EXPECT_GT(accepted, 0U);
    EXPECT_GE(blocked, blocking_time);
    EXPECT_TRUE(tally->wait_for_replies(accepted));
    EXPECT_EQ(proxy->echo(7), 7);
    EXPECT_EQ(tally->replies(), accepted);
}

} // namespace
