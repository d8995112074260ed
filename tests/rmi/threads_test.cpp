// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "rmi_test.h"
#include "stamp_stream.h"

namespace {

using drill::Proxy;
using drill::Server;
using drill::StampStream;
using drill::StreamResult;
using drill::Tally;
using testing::AnyOf;
using testing::Not;
using testing::StartsWith;
namespace rmi = org::opensplice::DDS_RMI;

using Threads = drill::RmiTest;

TEST_F(Threads, may_all_use_one_proxy)
{
    constexpr DDS::Long thread_count = 16;
    constexpr std::size_t calls = 300;
    const Server server;
    const Proxy proxy = find_proxy();

    std::vector<std::future<StreamResult>> results;
    for (DDS::Long caller = 1; caller <= thread_count; ++caller)
        results.push_back(std::async(std::launch::async, [&proxy, caller] {
            StampStream stream(proxy, 1, caller, 10);
            for (std::size_t i = 0; i < calls; ++i)
                stream.call();
            EXPECT_TRUE(stream.finish(test_support::event_deadline));
            return stream.take_result();
        }));

    for (auto& one : results) {
        const StreamResult result = one.get();
        EXPECT_EQ(result.replied, calls);
        EXPECT_EQ(result.wrong, 0U);
    }
    EXPECT_EQ(proxy->runs(), thread_count * calls);
    EXPECT_EQ(proxy->repeats(), 0U);
}

TEST_F(Threads, may_all_wait_for_replies_on_one_proxy)
{
    constexpr int thread_count = 16;
    constexpr DDS::Long calls = 50;
    const Server server;
    const Proxy proxy = find_proxy();

    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; ++i)
        threads.emplace_back([&proxy, i] {
            for (DDS::Long value = i; value < i + calls; ++value)
                EXPECT_EQ(proxy->echo(value), value);
        });
    for (std::thread& thread : threads)
        thread.join();
}

std::string name_of_this_thread()
{
    std::array<char, 64> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return name.data();
}

/// The name of a thread of Cyclone's own, which nothing may hold up.
const auto is_cyclones =
    AnyOf(StartsWith("recv"), StartsWith("dq."), StartsWith("tev"), StartsWith("lease"), StartsWith("gc"));

TEST_F(Threads, of_reply_hooks_are_neither_the_callers_nor_cyclones)
{
    const Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    std::promise<std::pair<std::thread::id, std::string>> hook_thread;

    call_echo(proxy, tally, 1, [&] {
        hook_thread.set_value({std::this_thread::get_id(), name_of_this_thread()});
    });

    const auto [id, name] = hook_thread.get_future().get();
    EXPECT_NE(id, std::this_thread::get_id());
    EXPECT_THAT(name, Not(is_cyclones));
}

TEST_F(Threads, of_implementations_are_not_cyclones)
{
    const Server server;
    const Proxy proxy = find_proxy();

    DDS::String name = proxy->thread_name();

    EXPECT_THAT(name, Not(is_cyclones));
    DDS::string_free(name);
}

// From a thread that takes samples in, so many requests could not be sent: their acknowledgements would have
// to come in on the thread that waits for them.
TEST_F(Threads, of_reply_hooks_may_make_many_further_calls)
{
    constexpr int calls = 1000;
    const std::string text(1000, 'x');
    const Server server;
    const Proxy proxy = find_proxy();
    const auto first = std::make_shared<Tally>();
    const auto further = std::make_shared<Tally>();
    std::promise<int> failures;

    call_echo(proxy, first, 1, [&] {
        int failed = 0;
        for (int i = 0; i < calls; ++i) {
            const rmi::shared_ptr<drill::EchoTextHandler> handler(new drill::EchoTextHandler(further));
            try {
                proxy->async_echo_text(DDS::string_dup(text.c_str()), handler.get());
            } catch (const rmi::SystemException&) {
                ++failed;
            }
        }
        failures.set_value(failed);
    });

    EXPECT_EQ(failures.get_future().get(), 0);
    EXPECT_TRUE(further->wait_for_releases(calls));
    EXPECT_EQ(further->replies(), static_cast<std::size_t>(calls));
}

TEST_F(Threads, of_reply_hooks_cannot_wait_for_another_reply_of_their_proxy)
{
    const Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    std::promise<bool> refused;

    call_echo(proxy, tally, 1, [&] {
        try {
            proxy->echo(2);
            refused.set_value(false);
        } catch (const rmi::BAD_INV_ORDER&) {
            refused.set_value(true);
        }
    });

    EXPECT_TRUE(refused.get_future().get());
    EXPECT_EQ(proxy->echo(3), 3);
}

TEST_F(Threads, of_reply_hooks_can_wait_for_a_reply_of_another_proxy)
{
    const Server server;
    const Proxy proxy = find_proxy();
    const Proxy other = find_proxy();
    const auto tally = std::make_shared<Tally>();
    std::promise<DDS::Long> result;

    call_echo(proxy, tally, 1, [&] { result.set_value(other->echo(2)); });

    EXPECT_EQ(result.get_future().get(), 2);
}

TEST_F(Threads, of_a_pool_run_implementations_side_by_side)
{
    constexpr int pool = 4;
    Server server({"--threads", "MT,4"});
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();

    for (DDS::Long i = 0; i < pool; ++i)
        call_gated(proxy, tally, i);

    server.expect_at_gate(pool);
    server.open_gate();
    EXPECT_TRUE(tally->wait_for_replies(pool));
    EXPECT_EQ(tally->wrong(), 0U);
}

TEST_F(Threads, of_a_server_with_one_run_one_call_at_a_time)
{
    constexpr DDS::Long calls = 20;
    Server server({"--threads", "ST"});
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();

    for (DDS::Long i = 0; i < calls; ++i)
        call_gated(proxy, tally, i);
    server.expect_at_gate(1);
    server.open_gate();

    EXPECT_TRUE(tally->wait_for_replies(calls));
    EXPECT_EQ(proxy->most_gated(), 1);
}

} // namespace
