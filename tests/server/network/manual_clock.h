// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SERVER_MANUAL_CLOCK_H
#define TESTS_SERVER_MANUAL_CLOCK_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "network/clock.h"

/// Time that goes on only when a test says so. Who waits on it must outlive the last advance().
class ManualClock : public varnel::Clock
{
public:
    TimePoint now() const override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_now;
    }

    void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
              std::optional<TimePoint>) override
    {
        {
            const std::lock_guard<std::mutex> own_lock(m_mutex);
            m_waiter = Waiter{&changed, lock.mutex()};
        }
        changed.wait(lock);
    }

    void advance(std::chrono::seconds time)
    {
        std::optional<Waiter> waiter;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_now += time;
            waiter = m_waiter;
        }
        if (!waiter)
            return;
        // Once its mutex is free the waiter either waits or has yet to look at the time.
        const std::lock_guard<std::mutex> lock(*waiter->mutex);
        waiter->changed->notify_all();
    }

private:
    struct Waiter
    {
        std::condition_variable* changed;
        std::mutex* mutex;
    };

    mutable std::mutex m_mutex;
    TimePoint m_now{};              // guarded by m_mutex
    std::optional<Waiter> m_waiter; // guarded by m_mutex
};

#endif
