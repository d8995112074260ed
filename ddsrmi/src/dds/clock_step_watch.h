// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_CLOCK_STEP_WATCH_H
#define DDSRMI_DDS_CLOCK_STEP_WATCH_H

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

/// Keeps a participant going when the system clock is put back. Cyclone's thread for all that is due at a
/// time (announcing the participant, heartbeats, acknowledgements) waits on the system clock: after a step
/// back it would sleep for as long as the step. This notices the step, within a second, and wakes it.
class ClockStepWatch
{
public:
    explicit ClockStepWatch(std::shared_ptr<Entity> participant);
    ~ClockStepWatch();
    ClockStepWatch(const ClockStepWatch&) = delete;
    ClockStepWatch& operator=(const ClockStepWatch&) = delete;

private:
    void run();

    const std::shared_ptr<Entity> m_participant;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ending = false; // guarded by m_mutex
    std::thread m_thread;
};

} // namespace org::opensplice::DDS_RMI

#endif
