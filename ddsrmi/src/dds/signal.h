// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_SIGNAL_H
#define DDSRMI_DDS_SIGNAL_H

#include <condition_variable>
#include <mutex>
#include <utility>

#include "clock.h"

namespace org::opensplice::DDS_RMI {

/// Wakes the one thread that waits for it. Cyclone's own waitset counts its timeouts on the system clock,
/// which may jump; this one does not.
class Signal
{
public:
    /// Why the thread is woken: one of these, or several together.
    enum Reason : unsigned {
        change = 1,   ///< anything else
        messages = 2, ///< the reader may have got some
    };

    /// Any thread.
    void raise(Reason reason = change)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_raised |= reason;
        }
        m_changed.notify_one();
    }

    /// Returns once it has been raised since the last return, or at the deadline. Gives all reasons since.
    unsigned wait_until(Clock::time_point deadline)
    {
        std::unique_lock lock(m_mutex);
        const auto is_raised = [this] { return m_raised != 0; };
        if (deadline == Clock::time_point::max())
            m_changed.wait(lock, is_raised);
        else
            m_changed.wait_until(lock, deadline, is_raised);
        return std::exchange(m_raised, 0U);
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    unsigned m_raised = 0; // guarded by m_mutex
};

} // namespace org::opensplice::DDS_RMI

#endif
