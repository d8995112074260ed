// SPDX-License-Identifier: Apache-2.0
#include "dds/clock_step_watch.h"

#include <chrono>
#include <utility>

#include "clock.h"
#include "dds/partitioned.h"
#include "dds/path_name.h"
#include "dds/qos.h"
#include "dds_rmi.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::chrono::seconds look_pause{1};
constexpr std::chrono::milliseconds smallest_step{500};

std::chrono::nanoseconds system_clock_ahead()
{
    return std::chrono::system_clock::now().time_since_epoch() - Clock::now().time_since_epoch();
}

// Cyclone's thread looks at its whole list anew when something is taken out of it, and a reliable writer that
// goes takes something out.
void wake_cyclone(const Entity& participant)
{
    const Entity topic(dds_create_topic(participant.get(), &DDS_RMI_Identification_desc, "DDS_RMI_wake_up",
                                        nullptr, nullptr),
                       "cannot create a topic");
    const EntityListener nobody({});
    Partitioned::writer(participant, topic, make_path_name(participant), exchange_qos(), nobody);
}

} // namespace

ClockStepWatch::ClockStepWatch(std::shared_ptr<Entity> participant)
    : m_participant(std::move(participant)), m_thread([this] { run(); })
{
}

ClockStepWatch::~ClockStepWatch()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void ClockStepWatch::run()
{
    auto ahead = system_clock_ahead();
    std::unique_lock lock(m_mutex);
    while (!m_changed.wait_until(lock, Clock::now() + look_pause, [this] { return m_ending; })) {
        const auto before = std::exchange(ahead, system_clock_ahead());
        if (before - ahead < smallest_step)
            continue;
        try {
            wake_cyclone(*m_participant);
        } catch (...) {
            report_current_exception("going on after a step of the system clock");
        }
    }
}

} // namespace org::opensplice::DDS_RMI
