// SPDX-License-Identifier: Apache-2.0
#include "network/revert_timer.h"

#include <chrono>
#include <exception>
#include <iostream>
#include <utility>

namespace varnel {

namespace {
constexpr std::chrono::seconds pause_after_failure{1};
}

RevertTimer::RevertTimer(Clock& clock, Task task)
    : m_clock(clock), m_task(std::move(task)), m_thread([this] { run(); })
{
}

RevertTimer::~RevertTimer()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_stopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void RevertTimer::wake()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_woken = true;
    }
    m_changed.notify_all();
}

void RevertTimer::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_is_stopping) {
        m_is_woken = false;
        lock.unlock();
        const std::optional<Clock::TimePoint> next = run_task();
        lock.lock();
        wait_until(lock, next);
    }
}

std::optional<Clock::TimePoint> RevertTimer::run_task()
{
    try {
        return m_task();
    } catch (const std::exception& error) {
        std::cerr << "varnelde: reverting a configuration failed: " << error.what() << std::endl;
        return m_clock.now() + pause_after_failure;
    }
}

void RevertTimer::wait_until(std::unique_lock<std::mutex>& lock, std::optional<Clock::TimePoint> deadline)
{
    while (!m_is_woken && !m_is_stopping && (!deadline || m_clock.now() < *deadline))
        m_clock.wait(m_changed, lock, deadline);
}

} // namespace varnel
