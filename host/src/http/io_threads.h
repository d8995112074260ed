// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_IO_THREADS_H
#define ZORBD_IO_THREADS_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "http/worker_pool.h"

namespace zorbd {

/// Two threads of a server, of which one at a time leads: it handles the server's events, and between two
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

    /// Waits for events and handles them; may call submit(). It must not wait while has_work().
    using HandleEvents = std::function<void()>;

    /// Starts the threads. `wake` makes the event handler return, now or the next time. Throws
    /// std::system_error.
    IoThreads(WorkerPool& workers, HandleEvents handle_events, std::function<void()> wake);
    /// Ends the threads. No call may be running or waiting.
    ~IoThreads();
    IoThreads(const IoThreads&) = delete;
    IoThreads& operator=(const IoThreads&) = delete;

    /// Takes work over from the event handler, to be done here after this round or by a worker at once. False
    /// when too much is outstanding.
    bool submit(Work& work);

    /// Whether work was submitted that is to be done after this round. For the event handler.
    bool has_work() const { return !m_collected.empty(); }

    /// Tells how long work that came from here has taken. Any thread.
    void worked(Clock::duration took) { m_calls_are_quick = took < quick; }

private:
    void serve();
    void lead(std::unique_lock<std::mutex>& lock);
    void run_next(std::unique_lock<std::mutex>& lock);
    void watch(std::unique_lock<std::mutex>& lock);
    void take_lead();
    void hand_to_workers();
    bool leads() const { return m_leader == std::this_thread::get_id(); }
    void stop();

    WorkerPool& m_workers;
    const HandleEvents m_handle_events;
    const std::function<void()> m_wake;
    std::vector<Work*> m_collected; ///< in this round; the leader's own
    std::atomic<bool> m_calls_are_quick{true};
    std::mutex m_mutex; ///< taken before that of the workers
    std::condition_variable m_changed;
    std::vector<Work*> m_ready;      ///< for the leader to do, in the last round; guarded by m_mutex
    std::size_t m_next = 0;          ///< of them; guarded by m_mutex
    std::thread::id m_leader;        ///< guarded by m_mutex
    bool m_is_watched = false;       ///< the other thread watches, or is about to wake; guarded by m_mutex
    bool m_watch_sleeps = false;     ///< guarded by m_mutex
    bool m_in_call = false;          ///< of the leader; guarded by m_mutex
    unsigned long m_calls_begun = 0; ///< guarded by m_mutex
    bool m_stopping = false;         ///< guarded by m_mutex
    std::thread m_threads[2];
};

} // namespace zorbd

#endif
