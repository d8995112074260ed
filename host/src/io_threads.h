// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_IO_THREADS_H
#define ZORBD_IO_THREADS_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "worker_pool.h"

namespace zorbd {

/// Two threads of a listener, of which one at a time leads: it handles the listener's events, and between two
/// rounds of events it runs the calls that came in by itself, as long as calls have been quick, because to
/// wake another thread costs more than a quick call. The other one watches. When a call takes long, it takes
/// the lead, and calls go to the workers until they are quick again; so a slow call holds up nobody for
/// longer than `patience`.
class IoThreads
{
public:
    using Clock = std::chrono::steady_clock;

    /// How long a call may take to count as quick.
    static constexpr std::chrono::microseconds quick{100};
    /// How often the watching thread looks.
    static constexpr std::chrono::milliseconds patience{2};

    /// Starts the threads. `handle_events` waits for events and handles them; `wake` makes it return, at once
    /// or the next time. Throws std::system_error.
    IoThreads(WorkerPool& workers, std::function<void()> handle_events, std::function<void()> wake);
    /// Ends the threads. No call may be running or waiting.
    ~IoThreads();
    IoThreads(const IoThreads&) = delete;
    IoThreads& operator=(const IoThreads&) = delete;

    /// Takes work over from the event handler, to be done here or by a worker. False when too much is
    /// outstanding.
    bool submit(Work& work);

    /// Runs what tells the event handler that work from here is done, and wakes it if it may sleep.
    template <class Tell>
    void deliver(const Tell& tell)
    {
        const std::lock_guard<std::mutex> lock(m_mutex); // what it tells may let all this end
        tell();
        if (m_leader != std::this_thread::get_id())
            m_wake();
    }

    /// Tells how long a worker has taken for work that came from here. Any thread.
    void worked(Clock::duration took);

private:
    void serve();
    void lead(std::unique_lock<std::mutex>& lock);
    void run_first(std::unique_lock<std::mutex>& lock);
    void watch(std::unique_lock<std::mutex>& lock);
    void take_lead();
    void stop();

    WorkerPool& m_workers;
    const std::function<void()> m_handle_events;
    const std::function<void()> m_wake;
    std::mutex m_mutex; ///< taken before that of the workers
    std::condition_variable m_changed;
    std::deque<Work*> m_ready;       ///< for the leader to do; guarded by m_mutex
    std::thread::id m_leader;        ///< guarded by m_mutex
    bool m_is_watched = false;       ///< the other thread watches, or is about to wake; guarded by m_mutex
    bool m_watch_sleeps = false;     ///< guarded by m_mutex
    bool m_calls_are_quick = true;   ///< guarded by m_mutex
    bool m_in_call = false;          ///< of the leader; guarded by m_mutex
    unsigned long m_calls_begun = 0; ///< guarded by m_mutex
    bool m_stopping = false;         ///< guarded by m_mutex
    std::thread m_threads[2];
};

} // namespace zorbd

#endif
