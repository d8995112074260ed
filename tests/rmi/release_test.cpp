// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "rmi_test.h"

namespace {

using drill::Proxy;
using drill::Server;
using drill::Tally;
namespace rmi = org::opensplice::DDS_RMI;

using Release = drill::RmiTest;

TEST_F(Release, in_a_reply_hook_leaves_no_further_hook)
{
    constexpr DDS::Long calls = 50;
    Server server;
    Proxy proxy = find_proxy();
    const auto gated = std::make_shared<Tally>();
    const auto tally = std::make_shared<Tally>();
    call_gated(proxy, gated, 0);
    server.expect_at_gate(1);

    call_echo(proxy, tally, 1, [&proxy] { proxy.reset(); });
    for (DDS::Long i = 2; i <= calls; ++i)
        call_echo(proxy, tally, i);
    server.open_gate();

    EXPECT_TRUE(tally->wait_for_releases(calls));
    EXPECT_EQ(tally->replies(), 1U);
    // Its reply came before, but replies of different operations may be delivered in either order.
    EXPECT_TRUE(gated->wait_for_releases(1));
}

TEST_F(Release, on_another_thread_under_load_leaves_no_hook_running)
{
    constexpr int rounds = 10;
    constexpr DDS::Long calls = 500;
    const Server server;

    for (int round = 0; round < rounds; ++round) {
        Proxy proxy = find_proxy();
        const auto tally = std::make_shared<Tally>();
        const auto gone = std::make_shared<std::atomic<bool>>(false);
        const auto late = std::make_shared<std::atomic<int>>(0);
        for (DDS::Long i = 0; i < calls; ++i)
            call_echo(proxy, tally, i, [gone, late] { *late += *gone ? 1 : 0; });
        EXPECT_TRUE(tally->wait_for_replies(1));

        std::thread([&proxy, gone] {
            proxy.reset();
            *gone = true;
        }).join();

        EXPECT_EQ(tally->releases(), static_cast<std::size_t>(calls));
        EXPECT_EQ(*late, 0);
    }
}

TEST_F(Release, waits_for_the_hook_that_is_running)
{
    const Server server;
    Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    std::promise<void> in_hook;
    std::promise<void> leave_hook;
    std::atomic<bool> hook_ended{false};
    call_echo(proxy, tally, 1, [&] {
        in_hook.set_value();
        leave_hook.get_future().wait();
        hook_ended = true;
    });
    in_hook.get_future().wait();

    bool ended_first = false;
    std::thread releasing([&] {
        proxy.reset();
        ended_first = hook_ended;
    });
    leave_hook.set_value();
    releasing.join();

    EXPECT_TRUE(ended_first);
}

TEST_F(Release, after_the_runtime_was_stopped_is_harmless)
{
    constexpr DDS::Long calls = 20;
    Server server;
    Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    for (DDS::Long i = 0; i < calls; ++i)
        call_gated(proxy, tally, i);
    server.expect_at_gate(1);

    EXPECT_TRUE(runtime()->stop());

    EXPECT_EQ(tally->releases(), static_cast<std::size_t>(calls));
    EXPECT_EQ(tally->replies(), 0U);
    EXPECT_THROW(call_echo(proxy, tally, 1), rmi::BAD_INV_ORDER);
    proxy.reset();
}

TEST_F(Release, while_another_thread_waits_for_a_reply_ends_that_wait)
{
    Server server;
    const Proxy proxy = find_proxy();
    std::thread waiting([&proxy] { EXPECT_THROW(proxy->gated(1), rmi::BAD_INV_ORDER); });
    server.expect_at_gate(1);

    runtime()->stop();

    waiting.join();
}

TEST_F(Release, of_one_proxy_leaves_another_alone)
{
    const Server server;
    const Proxy kept = find_proxy();
    Proxy dropped = find_proxy();

    dropped.reset();

    EXPECT_EQ(kept->echo(7), 7);
}

TEST_F(Release, lets_the_library_that_holds_the_hooks_be_unloaded)
{
    const Server server;
    test_support::ChildProcess unloader({DRILL_UNLOADER, "--cycles", "6", DRILL_PLUGIN});

    EXPECT_EQ(unloader.wait_for_exit(), 0) << unloader.error_output();
}

} // namespace
