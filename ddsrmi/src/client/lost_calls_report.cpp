// SPDX-License-Identifier: Apache-2.0
#include "client/lost_calls_report.h"

#include <algorithm>
#include <utility>

#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::chrono::seconds quiet_time{1};

struct Words
{
    const char* what;
    const char* why;
};

// In the order of CallFailure.
constexpr std::array<Words, 6> words{{
    {"have no reply for", "the implementation failed"},
    {"have no reply for", "its server does not know the operation"},
    {"lost", "its server has gone, or was replaced"},
    {"gave up", "no reply in time"},
    {"gave up", "the proxy was released or the runtime stopped"},
    {"have no handler of exceptions for", "the implementation raised one"},
}};

} // namespace

void LostCallsReport::write_when_due(Clock::time_point now)
{
    if (now < due())
        return;
    write_all();
    m_quiet_until = now + quiet_time;
}

void LostCallsReport::write_all()
{
    for (std::size_t i = 0; i < reasons; ++i)
        if (const std::size_t count = std::exchange(m_counts[i], 0))
            report(std::string(words[i].what) + ' ' + std::to_string(count) + " requests to service '" +
                   m_service + "': " + words[i].why);
}

Clock::time_point LostCallsReport::due() const
{
    const bool anything =
        std::any_of(m_counts.begin(), m_counts.end(), [](std::size_t count) { return count > 0; });
    return anything ? m_quiet_until : Clock::time_point::max();
}

} // namespace org::opensplice::DDS_RMI
