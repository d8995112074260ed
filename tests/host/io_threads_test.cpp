// SPDX-License-Identifier: Apache-2.0
// Which thread runs a call, and who handles events meanwhile.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "http/io_threads.h"

namespace {

using namespace std::chrono_literals;

constexpr auto event_deadline = 30s;

/// A call that does what the test says, and tells where it ran.
class Call : public zorbd::Work
{
public:
    explicit Call(std::function<void()> body) : m_body(std::move(body)) {}

    bool run(bool /*may_wait*/) override
    {
        m_body();
        m_ran_on.set_value(std::this_thread::get_id());
        return true;
    }
    void deliver() override { m_delivered.set_value(); }

    std::thread::id ran_on()
    {
        const std::thread::id thread = m_ran_on.get_future().get();
        m_delivered.get_future().wait();
        return thread;
    }

private:
    const std::function<void()> m_body;
    std::promise<std::thread::id> m_ran_on;
    std::promise<void> m_delivered;
};

class io_threads : public testing::Test
{
protected:
    /// Lets one round of events bring these calls; gives the thread that handled it, and how many were taken.
    std::pair<std::thread::id, std::size_t> round(std::vector<Call*> calls)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_rounds.push_back(std::move(calls));
        m_changed.notify_all();
        EXPECT_TRUE(m_changed.wait_for(lock, event_deadline, [this] { return m_rounds.empty(); }));
        return {m_handler, m_taken};
    }

    Call& call(std::function<void()> body) { return m_calls.emplace_back(std::move(body)); }

    /// A call that tells the threads how long it has taken, as all calls do.
    Call& lasting(std::chrono::milliseconds duration)
    {
        return call([this, duration] { m_threads.worked(duration); });
    }

    /// Waits until a quick call is run by the thread that handles events.
    bool runs_quick_calls_itself()
    {
        const auto end = std::chrono::steady_clock::now() + event_deadline;
        while (std::chrono::steady_clock::now() < end) {
            Call& quick = lasting(0ms);
            const auto handler = round({&quick}).first;
            if (quick.ran_on() == handler)
                return true;
        }
        return false;
    }

private:
    void handle_events()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_woken || !m_rounds.empty(); });
        m_woken = false;
        if (m_rounds.empty())
            return;
        m_handler = std::this_thread::get_id();
        m_taken = 0;
        for (Call* call : m_rounds.front())
            m_taken += m_threads.submit(*call) ? 1 : 0;
        m_rounds.pop_front();
        m_changed.notify_all();
    }

    void wake()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_woken = true;
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::vector<Call*>> m_rounds;
    std::deque<Call> m_calls; ///< outlive the threads
    std::thread::id m_handler;
    std::size_t m_taken = 0;
    bool m_woken = false;
    zorbd::WorkerPool m_workers{2, 2, 4};

protected:
    zorbd::IoThreads m_threads{m_workers, [this] { handle_events(); }, [this] { wake(); }};
};

TEST_F(io_threads, run_a_quick_call_where_events_are_handled)
{
    EXPECT_TRUE(runs_quick_calls_itself());
}

TEST_F(io_threads, pass_what_comes_with_a_call_that_is_not_quick_to_the_workers)
{
    ASSERT_TRUE(runs_quick_calls_itself());
    Call& slow = lasting(1ms);
    Call& next = lasting(0ms);
    Call& last = lasting(0ms);

    const auto handler = round({&slow, &next, &last}).first;

    slow.ran_on(); // there, unless the machine was so busy that calls before it passed for slow
    EXPECT_NE(next.ran_on(), handler);
    EXPECT_NE(last.ran_on(), handler);
}

TEST_F(io_threads, return_to_where_events_are_handled_when_calls_are_quick_again)
{
    ASSERT_TRUE(runs_quick_calls_itself());
    Call& slow = lasting(1ms);
    round({&slow});
    slow.ran_on();

    EXPECT_TRUE(runs_quick_calls_itself());
}

TEST_F(io_threads, handle_events_while_a_call_does_not_end)
{
    ASSERT_TRUE(runs_quick_calls_itself());
    std::promise<void> end;
    Call& endless = call([&end] { end.get_future().wait(); });
    Call& with_it = lasting(0ms);
    Call& later = lasting(0ms);

    round({&endless, &with_it});
    with_it.ran_on();
    const auto handler = round({&later}).first;
    later.ran_on();
    end.set_value();

    EXPECT_NE(endless.ran_on(), handler);
}

TEST_F(io_threads, refuse_calls_when_too_many_are_outstanding)
{
    std::promise<void> end;
    const std::shared_future<void> ended = end.get_future().share();
    std::vector<Call*> calls(6);
    for (Call*& each : calls)
        each = &call([ended] { ended.wait(); });

    const std::size_t taken = round(calls).second;

    EXPECT_EQ(taken, 4U);
    end.set_value();
    for (std::size_t i = 0; i < taken; ++i)
        calls[i]->ran_on();
}

} // namespace
