// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_TALLY_H
#define TESTS_RMI_TALLY_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

#include "support/child_process.h"

namespace drill {

/// Counts what becomes of calls. Any thread may use it.
class Tally
{
public:
    /// A reply hook was called, with the result that belongs to its request or with another one.
    void on_reply(bool right)
    {
        const std::lock_guard lock(m_mutex);
        ++m_replies;
        m_wrong += right ? 0 : 1;
        m_changed.notify_all();
    }
    /// A reply handler was destroyed.
    void on_release()
    {
        const std::lock_guard lock(m_mutex);
        ++m_releases;
        m_changed.notify_all();
    }

    /// False when the deadline passes first.
    bool wait_for_replies(std::size_t count,
                          std::chrono::milliseconds deadline = test_support::event_deadline)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, deadline, [&] { return m_replies >= count; });
    }
    bool wait_for_releases(std::size_t count,
                           std::chrono::milliseconds deadline = test_support::event_deadline)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, deadline, [&] { return m_releases >= count; });
    }

    std::size_t replies() const
    {
        const std::lock_guard lock(m_mutex);
        return m_replies;
    }
    std::size_t wrong() const
    {
        const std::lock_guard lock(m_mutex);
        return m_wrong;
    }
    std::size_t releases() const
    {
        const std::lock_guard lock(m_mutex);
        return m_releases;
    }

private:
    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::size_t m_replies = 0;
    std::size_t m_wrong = 0;
    std::size_t m_releases = 0;
};

} // namespace drill

#endif
