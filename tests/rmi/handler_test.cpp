// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "rmi_test.h"

namespace {

using drill::EchoHandler;
using drill::Proxy;
using drill::Server;
using drill::Tally;
using testing::HasSubstr;
namespace rmi = org::opensplice::DDS_RMI;

using ReplyHandler = drill::RmiTest;

TEST_F(ReplyHandler, serves_one_outstanding_request_at_a_time)
{
    Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    const rmi::shared_ptr<drill::GatedHandler> handler(new drill::GatedHandler(tally, 5));

    proxy->async_gated(5, handler.get());
    EXPECT_THROW(proxy->async_gated(5, handler.get()), rmi::BAD_PARAM);
    server.open_gate();
    EXPECT_TRUE(tally->wait_for_replies(1));

    // Its hook has been called, so it is free again.
    proxy->async_gated(5, handler.get());
    EXPECT_TRUE(tally->wait_for_replies(2));
}

TEST_F(ReplyHandler, can_be_used_again_in_its_own_hook)
{
    constexpr std::size_t calls = 100;
    const Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    EchoHandler* self = nullptr;
    const rmi::shared_ptr<EchoHandler> handler(new EchoHandler(tally, 5, [&] {
        if (tally->replies() < calls)
            proxy->async_echo(5, self);
    }));
    self = handler.get();

    proxy->async_echo(5, handler.get());

    EXPECT_TRUE(tally->wait_for_replies(calls));
    EXPECT_EQ(proxy->echo(6), 6);
    EXPECT_EQ(tally->replies(), calls);
}

TEST_F(ReplyHandler, may_throw_and_the_next_reply_is_delivered)
{
    const Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();

    testing::internal::CaptureStderr();
    call_echo(proxy, tally, 1, [] { throw std::runtime_error("no such luck"); });
    call_echo(proxy, tally, 2, [] { throw 2; });
    call_echo(proxy, tally, 3);
    EXPECT_TRUE(tally->wait_for_releases(3));
    const std::string message = testing::internal::GetCapturedStderr();

    EXPECT_EQ(tally->replies(), 3U);
    EXPECT_EQ(tally->wrong(), 0U);
    EXPECT_THAT(message, HasSubstr("the reply hook of echo threw: no such luck"));
}

TEST_F(ReplyHandler, is_released_when_its_implementation_throws_and_the_time_for_the_reply_is_over)
{
    Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    proxy->setTimeout(500);

    for (const DDS::Long value : {0, 1}) {
        const rmi::shared_ptr<drill::FailHandler> handler(new drill::FailHandler(tally, value));
        proxy->async_fail(value, handler.get());
    }

    EXPECT_EQ(proxy->echo(7), 7);
    EXPECT_TRUE(
        server.process().wait_for_error_line("the implementation of fail threw: a failure on purpose"));
    EXPECT_TRUE(tally->wait_for_releases(2));
    EXPECT_EQ(tally->replies(), 0U);
}

TEST_F(ReplyHandler, is_released_when_no_reply_comes_in_time)
{
    constexpr DDS::Long calls = 100;
    Server server;
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();
    proxy->setTimeout(500);

    for (DDS::Long i = 0; i < calls; ++i)
        call_gated(proxy, tally, i);
    EXPECT_TRUE(tally->wait_for_releases(calls));
    EXPECT_EQ(tally->replies(), 0U);

    // Replies that come after all are nobody's, and do no harm.
    proxy->setTimeout(60'000);
    server.open_gate();
    EXPECT_EQ(proxy->echo(7), 7);
    EXPECT_EQ(tally->replies(), 0U);
}

TEST_F(ReplyHandler, of_a_call_without_one_is_a_callers_error)
{
    const Server server;
    const Proxy proxy = find_proxy();

    EXPECT_THROW(proxy->async_echo(1, nullptr), rmi::BAD_PARAM);
    EXPECT_EQ(proxy->echo(7), 7);
}

TEST_F(ReplyHandler, waiting_for_a_reply_that_does_not_come_ends_with_a_timeout)
{
    Server server;
    const Proxy proxy = find_proxy();
    proxy->setTimeout(200);

    EXPECT_THROW(proxy->gated(1), rmi::TIMEOUT);
}

} // namespace
