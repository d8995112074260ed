// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_WORKER_POOL_H
#define ZORBD_WORKER_POOL_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace zorbd {

/// Something for a worker to do. Neither operation may throw.
class Work
{
public:
    virtual ~Work() = default;

    /// The work itself. False when it is not done, but has seen to it that it is submitted again: the object
    /// must not be touched then. That is for workers only, which `may_wait` tells.
    virtual bool run(bool may_wait) = 0;
    /// Tells whoever waits that it is done. By then the work counts as outstanding no more, so that a caller
    /// who answers at once with more work finds room. The pool does not touch the object afterwards.
    virtual void deliver() = 0;
};

/// Threads that do work in the order in which it comes, with a bound on what waits or runs. When all are at
/// work and more comes, there come more threads, up to a bound of their own.
class WorkerPool
{
public:
    /// Starts the first threads. Throws std::system_error when one cannot be started.
    WorkerPool(std::size_t threads, std::size_t max_threads, std::size_t max_outstanding);
    /// Does what is outstanding, then ends the threads.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Hands `work` over, which must live until it is delivered. False when too much is outstanding. Any
    /// thread may call it; it does not wait.
    bool submit(Work& work);

    /// The two halves of submit(): counts work as outstanding if there is room for it, and hands over work
    /// that counts.
    bool reserve();
    void submit_reserved(Work& work);
    /// Ends what was reserved and has been run elsewhere.
    void release();

    /// What waits or runs now.
    std::size_t outstanding() const { return m_outstanding; }

    /// Waits until nothing is outstanding; false when the deadline passes first.
    bool wait_idle(std::chrono::steady_clock::time_point deadline);

private:
    void start_one();
    void start_another();
    void stop();
    void serve();
    Work* take();

    const std::size_t m_max_threads;
    const std::size_t m_max_outstanding;
    std::atomic<std::size_t> m_outstanding{0}; ///< waiting and running, also elsewhere
    std::mutex m_mutex;
    std::condition_variable m_changed; ///< work came, or m_stopping
    std::condition_variable m_idle;
    std::deque<Work*> m_waiting;        ///< guarded by m_mutex
    bool m_stopping = false;            ///< guarded by m_mutex
    std::size_t m_at_rest = 0;          ///< threads; guarded by m_mutex
    std::vector<std::thread> m_threads; ///< guarded by m_mutex, until m_stopping
};

} // namespace zorbd

#endif
