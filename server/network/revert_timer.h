// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_NETWORK_REVERT_TIMER_H
#define SERVER_NETWORK_REVERT_TIMER_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "network/clock.h"

namespace varnel {

/// A thread that does something whenever its time has come.
class RevertTimer
{
public:
    /// Does what is due and says when there will be something due next; nothing when there is nothing.
    using Task = std::function<std::optional<Clock::TimePoint>()>;

    /// Calls `task` on the timer's own thread, under no lock: at the start, at each time that it names, and
    /// after each wake(). What it throws is reported on standard error, and it is called again a little
    /// later.
    RevertTimer(Clock& clock, Task task);
    /// Returns when the thread has ended.
    ~RevertTimer();
    RevertTimer(const RevertTimer&) = delete;
    RevertTimer& operator=(const RevertTimer&) = delete;

    /// Has the task called soon, because what is due next may have changed. Any thread.
    void wake();

private:
    void run();
    std::optional<Clock::TimePoint> run_task();
    void wait_until(std::unique_lock<std::mutex>& lock, std::optional<Clock::TimePoint> deadline);

    Clock& m_clock;
    const Task m_task;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_is_woken = false;    // guarded by m_mutex
    bool m_is_stopping = false; // guarded by m_mutex
    std::thread m_thread;       // last: it uses all of the above
};

} // namespace varnel

#endif
