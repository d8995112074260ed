// SPDX-License-Identifier: Apache-2.0
#include "http/io_threads.h"

#include <utility>

namespace zorbd {
namespace {

/// After so many looks without a call the watching thread sleeps until there is one.
constexpr int looks_before_sleep = 50;

} // namespace

IoThreads::IoThreads(WorkerPool& workers, HandleEvents handle_events, std::function<void()> wake)
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
    if (!m_calls_are_quick)
        return m_workers.submit(work);
    m_collected.push_back(&work);
    if (m_workers.reserve())
        return true;
    m_collected.pop_back();
    return false;
}

void IoThreads::serve()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        if (m_leader == std::thread::id())
            m_leader = std::this_thread::get_id();
        if (leads())
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
    m_ready.swap(m_collected);
    if (!m_is_watched)
        return hand_to_workers();
    while (leads() && m_calls_are_quick && m_next < m_ready.size())
        run_next(lock);
    if (leads())
        hand_to_workers(); // what is left after a call that was not quick
}

void IoThreads::run_next(std::unique_lock<std::mutex>& lock)
{
    Work* work = m_ready[m_next++];
    m_in_call = true;
    ++m_calls_begun;
    if (std::exchange(m_watch_sleeps, false))
        m_changed.notify_all();
    lock.unlock();
    work->run(false);
    m_workers.release();
    work->deliver();
    lock.lock();
    if (leads())
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
    hand_to_workers();
}

/// What is left of m_ready. The caller holds m_mutex.
void IoThreads::hand_to_workers()
{
    while (m_next < m_ready.size())
        m_workers.submit_reserved(*m_ready[m_next++]);
    m_ready.clear();
    m_next = 0;
}

} // namespace zorbd
