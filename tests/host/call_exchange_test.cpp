// SPDX-License-Identifier: Apache-2.0
// A call that is not waited for any more while it waits for a place at its plug-in.
#include "http/call_exchange.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <array>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "http/http_connection.h"
#include "http/io_threads.h"
#include "http/transport.h"
#include "method_stubs.h"

namespace {

using namespace zorbd;
using testing::HasSubstr;
using testing::Optional;

constexpr std::chrono::seconds event_deadline{30};

/// What a connection needs that nobody uses.
class NoServices : public ConnectionServices
{
public:
    const RequestGate& gate() const override { throw std::logic_error("no request comes"); }
    CallExchange* start_call(HttpConnection& /*connection*/, std::string /*body*/,
                             std::shared_ptr<const Token> /*token*/) override
    {
        return nullptr;
    }
    std::optional<std::string> give_up(CallExchange& /*call*/) override { return std::nullopt; }
    void count_refusal(unsigned /*status*/) noexcept override {}
    std::function<void()> wake_of(const HttpConnection& /*connection*/) override { return {}; }
    void note_overdue() noexcept override {}
};

/// Keeps the calls that are done; holds the thread up that brings the first of them until it is let go on.
class Done : public DoneCalls
{
public:
    void take_back(CallExchange& done) noexcept override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const bool is_first = m_done.empty();
        m_done.push_back(&done);
        m_changed.notify_all();
        if (is_first)
            m_changed.wait(lock, [this] { return m_may_go_on; });
    }

    void let_go_on()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_may_go_on = true;
        m_changed.notify_all();
    }

    bool wait_for(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, event_deadline, [&] { return m_done.size() >= count; });
    }

    std::vector<CallExchange*> all()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_done;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<CallExchange*> m_done;
    bool m_may_go_on = false;
};

/// One worker, and a plug-in of which one call may run.
class call_exchange : public testing::Test
{
protected:
    call_exchange()
    {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
            throw std::runtime_error("no sockets");
        m_other_end.reset(ends[1]);
        const sockaddr address{AF_UNIX, {}};
        auto place = m_registry.admit(ends[0], address, false);
        m_connection = std::make_unique<HttpConnection>(
            m_no_services, std::make_unique<PlainTransport>(FileDescriptor(ends[0])), std::move(place));
        m_methods.add("hold", [this](const auto&, auto&) {
            m_has_begun.set_value();
            m_may_return.get_future().wait();
            return 1;
        });
        m_methods.add("count", [this](const auto&, auto&) { return ++m_counted; });
    }

    std::unique_ptr<CallExchange> body(const std::string& text)
    {
        return std::make_unique<CallExchange>(CallServices{m_dispatcher, m_workers, m_loads, m_log},
                                              m_io_threads, m_done, *m_connection, text, nullptr);
    }

    std::unique_ptr<CallExchange> call(const std::string& method)
    {
        return body(R"({"jsonrpc":"2.0","id":1,"method":")" + method + R"("})");
    }

    /// Lets it run as a worker would, for which the one that there is has no time.
    bool waits(CallExchange& exchange)
    {
        EXPECT_TRUE(m_workers.reserve());
        return !exchange.run(true);
    }

    /// A call that runs until m_may_return.
    void hold(CallExchange& exchange)
    {
        EXPECT_TRUE(m_workers.submit(exchange));
        m_has_begun.get_future().wait();
    }

    std::promise<void> m_has_begun;
    std::promise<void> m_may_return;
    int m_counted = 0; ///< the worker's, until it has brought the call back
    Done m_done;

private:
    host_test::StubDirectory m_methods;
    Dispatcher m_dispatcher{m_methods, DispatchLimits()};
    EventFeed m_feed{EventLimits()};
    Metrics m_metrics;
    CallLog m_log{m_metrics, m_feed, nullptr};
    PluginLoads m_loads{{"stub.so"}, 1, 8};

protected:
    WorkerPool m_workers{1, 1, 8};

private:
    std::promise<void> m_stop;
    const std::shared_future<void> m_stopped{m_stop.get_future()};
    IoThreads m_io_threads{m_workers, [this] { m_stopped.wait(); }, [this] { m_stop.set_value(); }};
    NoServices m_no_services;
    ConnectionRegistry m_registry{ConnectionLimits()};
    FileDescriptor m_other_end;
    std::unique_ptr<HttpConnection> m_connection;
};

TEST_F(call_exchange, that_is_given_up_while_it_waits_is_answered_once_and_never_run)
{
    const auto holding = call("hold");
    const auto waiting = call("count");
    hold(*holding);
    ASSERT_TRUE(waits(*waiting));

    const auto answer = waiting->give_up("too late");
    m_may_return.set_value();
    m_done.let_go_on();

    EXPECT_THAT(answer, Optional(HasSubstr("count: too late; the call was not begun")));
    ASSERT_TRUE(m_done.wait_for(2));
    EXPECT_TRUE(m_workers.wait_idle(std::chrono::steady_clock::now() + event_deadline));
    EXPECT_EQ(m_done.all().size(), 2U);
    EXPECT_EQ(waiting->asks, nullptr);
    EXPECT_EQ(m_counted, 0);
}

TEST_F(call_exchange, that_is_given_up_when_it_has_got_its_place_hands_it_on)
{
    const auto holding = call("hold");
    const auto given_up = call("count");
    const auto next = call("count");
    hold(*holding);
    ASSERT_TRUE(waits(*given_up));
    ASSERT_TRUE(waits(*next));
    m_may_return.set_value();
    ASSERT_TRUE(m_done.wait_for(1)); // the second one has its place, and the worker no time for it

    const auto answer = given_up->give_up("too late");
    m_done.let_go_on();

    EXPECT_THAT(answer, Optional(HasSubstr("count: too late; the call was not begun")));
    ASSERT_TRUE(m_done.wait_for(3)) << "the third one waits for ever";
    EXPECT_THAT(next->answer, Optional(HasSubstr(R"("result":1)")));
    EXPECT_EQ(m_counted, 1);
}

TEST_F(call_exchange, that_is_given_up_while_it_runs_says_which_calls_were_begun)
{
    const auto batch = body(R"([{"jsonrpc":"2.0","id":1,"method":"count"},
                                {"jsonrpc":"2.0","id":2,"method":"hold"},
                                {"jsonrpc":"2.0","id":3,"method":"count"}])");
    hold(*batch);

    const auto answer = batch->give_up("too late");
    m_may_return.set_value();
    m_done.let_go_on();

    ASSERT_TRUE(m_done.wait_for(1));
    EXPECT_THAT(answer, Optional(HasSubstr(R"("result":1)")));
    EXPECT_THAT(answer, Optional(HasSubstr("hold: too late; the call is left to end")));
    EXPECT_THAT(answer, Optional(HasSubstr("count: too late; the call was not begun")));
    EXPECT_EQ(m_counted, 1);
}

TEST_F(call_exchange, that_is_given_up_before_anybody_has_read_it_is_answered)
{
    const auto nonsense = body("nonsense");

    EXPECT_THAT(nonsense->give_up("too late"), Optional(HasSubstr("Parse error")));
}

} // namespace
