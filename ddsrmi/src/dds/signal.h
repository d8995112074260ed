// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_SIGNAL_H
#define DDSRMI_DDS_SIGNAL_H

#include <condition_variable>
#include <mutex>

#include "clock.h"

namespace org::opensplice::DDS_RMI {

/// Wakes the one thread that waits for it. Cyclone's own waitset counts its timeouts on the system clock,
/// which may jump; this one does not.
class Signal
{
public:
    /// Any thread.
    void raise()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_raised = true;
        }
        m_changed.notify_one();
    }

    /// Returns once it has been raised since the last return, or at the deadline.
    void wait_until(Clock::time_point deadline)
    {
        std::unique_lock lock(m_mutex);
        const auto is_raised = [this] { return m_raised; };
        if (deadline == Clock::time_point::max())
            m_changed.wait(lock, is_raised);
        else
            m_changed.wait_until(lock, deadline, is_raised);
        m_raised = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_raised = false; // guarded by m_mutex
};

} // namespace org::opensplice::DDS_RMI

#endif
