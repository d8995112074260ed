// SPDX-License-Identifier: Apache-2.0
#include "io_threads.h"

#include <utility>

namespace zorbd {
namespace {

/// After so many looks without a call the watching thread sleeps until there is one.
constexpr int looks_before_sleep = 50;

} // namespace

IoThreads::IoThreads(WorkerPool& workers, std::function<void()> handle_events, std::function<void()> wake)
    : m_workers(workers), m_handle_events(std::move(handle_events)), m_wake(std::move(wake))
{
    try {
        for (std::thread& thread : m_threads)
            thread = std::thread([this] { serve(); });
    } catch (...) {
        stop();
        throw;
    }
}

IoThreads::~IoThreads()
{
    stop();
}

void IoThreads::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    m_wake();
    for (std::thread& thread : m_threads)
        if (thread.joinable())
            thread.join();
}

bool IoThreads::submit(Work& work)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_calls_are_quick || !m_is_watched)
        return m_workers.submit(work);
    if (!m_workers.reserve())
        return false;
    m_ready.push_back(&work);
    return true;
}

void IoThreads::worked(Clock::duration took)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls_are_quick = took < quick;
}

void IoThreads::serve()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        if (m_leader == std::thread::id())
            m_leader = std::this_thread::get_id();
        if (m_leader == std::this_thread::get_id())
            lead(lock);
        else
            watch(lock);
    }
}

void IoThreads::lead(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    m_handle_events();
    lock.lock();
    while (m_leader == std::this_thread::get_id() && !m_ready.empty())
        run_first(lock);
}

void IoThreads::run_first(std::unique_lock<std::mutex>& lock)
{
    Work* work = m_ready.front();
    m_ready.pop_front();
    m_in_call = true;
    ++m_calls_begun;
    if (std::exchange(m_watch_sleeps, false))
        m_changed.notify_all();
    lock.unlock();
    work->run();
    m_workers.release();
    work->deliver();
    lock.lock();
    if (m_leader == std::this_thread::get_id())
        m_in_call = false;
}

/// Until it takes the lead or all stops.
void IoThreads::watch(std::unique_lock<std::mutex>& lock)
{
    m_is_watched = true;
    int idle_looks = 0;
    while (!m_stopping) {
        const unsigned long seen = m_calls_begun;
        m_changed.wait_for(lock, patience, [this] { return m_stopping; });
        if (m_in_call && m_calls_begun == seen)
            return take_lead();
        idle_looks = m_calls_begun == seen ? idle_looks + 1 : 0;
        if (idle_looks < looks_before_sleep)
            continue;
        m_watch_sleeps = true;
        m_changed.wait(lock, [this] { return m_stopping || !m_watch_sleeps; });
        idle_looks = 0;
    }
}

/// The caller holds m_mutex.
void IoThreads::take_lead()
{
    m_leader = std::this_thread::get_id();
    m_is_watched = false;
    m_in_call = false;
    m_calls_are_quick = false;
    while (!m_ready.empty()) {
        m_workers.submit_reserved(*m_ready.front());
        m_ready.pop_front();
    }
}

} // namespace zorbd
