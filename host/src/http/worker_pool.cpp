// SPDX-License-Identifier: Apache-2.0
#include "http/worker_pool.h"

#include <exception>

namespace zorbd {

WorkerPool::WorkerPool(std::size_t threads, std::size_t max_threads, std::size_t max_outstanding)
    : m_max_threads(max_threads), m_max_outstanding(max_outstanding)
{
    try {
        for (std::size_t i = 0; i < threads; ++i)
            start_one();
    } catch (...) {
        stop();
        throw;
    }
}

WorkerPool::~WorkerPool()
{
    stop();
}

void WorkerPool::start_one()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_threads.emplace_back([this] { serve(); });
}

/// Where none can be had, the work waits for one of those there are. The caller holds m_mutex.
void WorkerPool::start_another()
{
    try {
        m_threads.emplace_back([this] { serve(); });
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): see above
    }
}

void WorkerPool::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

bool WorkerPool::submit(Work& work)
{
    if (!reserve())
        return false;
    submit_reserved(work);
    return true;
}

bool WorkerPool::reserve()
{
    std::size_t outstanding = m_outstanding;
    do {
        if (outstanding >= m_max_outstanding)
            return false;
    } while (!m_outstanding.compare_exchange_weak(outstanding, outstanding + 1));
    return true;
}

void WorkerPool::submit_reserved(Work& work)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(&work);
        if (m_waiting.size() > m_at_rest && m_threads.size() < m_max_threads && !m_stopping)
            start_another();
    }
    m_changed.notify_one();
}

bool WorkerPool::wait_idle(std::chrono::steady_clock::time_point deadline)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_idle.wait_until(lock, deadline, [this] { return m_outstanding == 0; });
}

void WorkerPool::serve()
{
    while (Work* work = take()) {
        if (!work->run(true))
            continue;
        release();
        work->deliver();
    }
}

/// The next work, once there is some; null when the pool stops and nothing is left.
Work* WorkerPool::take()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_at_rest;
    m_changed.wait(lock, [this] { return m_stopping || !m_waiting.empty(); });
    --m_at_rest;
    if (m_waiting.empty())
        return nullptr;
    Work* work = m_waiting.front();
    m_waiting.pop_front();
    return work;
}

void WorkerPool::release()
{
    if (m_outstanding.fetch_sub(1) != 1)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_idle.notify_all();
}

} // namespace zorbd
