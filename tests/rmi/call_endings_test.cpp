// SPDX-License-Identifier: Apache-2.0
// Every call that was accepted ends with a reply or with a reason.
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ddsrmi/call_failure.h"
#include "rmi_test.h"

namespace {

using drill::Proxy;
using drill::Server;
using drill::Tally;
using org::opensplice::DDS_RMI::CallFailure;
namespace rmi = org::opensplice::DDS_RMI;

/// What a number of handlers have been told. Any thread may use it.
class Failures
{
public:
    void add(CallFailure reason, const std::string& text)
    {
        const std::lock_guard lock(m_mutex);
        m_reasons.push_back(reason);
        m_text = text;
    }
    std::vector<CallFailure> reasons() const
    {
        const std::lock_guard lock(m_mutex);
        return m_reasons;
    }
    std::string last_text() const
    {
        const std::lock_guard lock(m_mutex);
        return m_text;
    }

private:
    mutable std::mutex m_mutex; // guards all below
    std::vector<CallFailure> m_reasons;
    std::string m_text;
};

/// A reply handler that wants to know why there is no reply.
template <class Handler>
class Curious : public Handler, public rmi::CallFailureHandler
{
public:
    template <class Value>
    Curious(std::shared_ptr<Tally> tally, std::shared_ptr<Failures> failures, Value expected)
        : Handler(std::move(tally), expected), m_failures(std::move(failures))
    {
    }
    void handleFailure(CallFailure reason, const char* text) override { m_failures->add(reason, text); }

private:
    const std::shared_ptr<Failures> m_failures;
};

class CallEndings : public drill::RmiTest
{
protected:
    /// Calls that stay at the server's gate, or in front of it.
    void call_gated_curiously(const Proxy& proxy, std::size_t calls)
    {
        using Handler = Curious<drill::GatedHandler>;
        for (std::size_t i = 0; i < calls; ++i)
            proxy->async_gated(1, rmi::shared_ptr<Handler>(new Handler(tally, failures, 1)).get());
    }

    const std::shared_ptr<Tally> tally = std::make_shared<Tally>();
    const std::shared_ptr<Failures> failures = std::make_shared<Failures>();
};

TEST_F(CallEndings, with_a_reply_is_no_failure)
{
    const Server server;
    const Proxy proxy = find_proxy();
    using Handler = Curious<drill::EchoHandler>;

    proxy->async_echo(5, rmi::shared_ptr<Handler>(new Handler(tally, failures, 5)).get());

    EXPECT_TRUE(tally->wait_for_releases(1));
    EXPECT_EQ(tally->replies(), 1U);
    EXPECT_TRUE(failures->reasons().empty());
}

TEST_F(CallEndings, are_told_when_the_implementation_throws)
{
    const Server server;
    const Proxy proxy = find_proxy();
    using Handler = Curious<drill::FailHandler>;

    for (const DDS::Long value : {0, 1}) {
        proxy->async_fail(value, rmi::shared_ptr<Handler>(new Handler(tally, failures, value)).get());
        EXPECT_THROW(proxy->fail(value), rmi::INTERNAL_ERROR);
    }

    EXPECT_TRUE(tally->wait_for_releases(2));
    EXPECT_EQ(tally->replies(), 0U);
    EXPECT_EQ(failures->reasons(), std::vector<CallFailure>(2, CallFailure::implementation_failed));
}

TEST_F(CallEndings, are_told_when_the_server_is_replaced)
{
    constexpr std::size_t calls = 100;
    auto server = std::make_unique<Server>();
    const Proxy proxy = find_proxy();
    call_gated_curiously(proxy, calls);
    server->expect_at_gate(1);
    auto synchronous = std::async(std::launch::async, [proxy] { return proxy->gated(1); });

    server->kill();
    server = std::make_unique<Server>();

    EXPECT_TRUE(tally->wait_for_releases(calls));
    EXPECT_EQ(failures->reasons(), std::vector<CallFailure>(calls, CallFailure::server_lost));
    EXPECT_THROW(synchronous.get(), rmi::SERVICE_NOT_FOUND);
    EXPECT_EQ(proxy->runs(), 0U);
    EXPECT_EQ(proxy->most_gated(), 0);
}

TEST_F(CallEndings, are_told_when_the_callers_patience_ends)
{
    Server server;
    const Proxy proxy = find_proxy();
    proxy->setTimeout(300);

    call_gated_curiously(proxy, 10);
    EXPECT_THROW(proxy->gated(1), rmi::TIMEOUT);

    EXPECT_TRUE(tally->wait_for_releases(10));
    EXPECT_EQ(failures->reasons(), std::vector<CallFailure>(10, CallFailure::given_up));
    server.open_gate();
}

TEST_F(CallEndings, are_told_when_the_last_handle_on_the_proxy_is_dropped)
{
    Server server;
    Proxy proxy = find_proxy();
    call_gated_curiously(proxy, 10);

    proxy.reset();

    EXPECT_TRUE(tally->wait_for_releases(10));
    EXPECT_EQ(failures->reasons(), std::vector<CallFailure>(10, CallFailure::closed));
    EXPECT_FALSE(failures->last_text().empty());
    server.open_gate();
}

} // namespace
