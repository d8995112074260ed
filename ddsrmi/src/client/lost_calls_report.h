// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_LOST_CALLS_REPORT_H
#define DDSRMI_CLIENT_LOST_CALLS_REPORT_H

#include <array>
#include <cstddef>
#include <string>

#include "clock.h"
#include "ddsrmi/call_failure.h"

namespace org::opensplice::DDS_RMI {

/// Tells on standard error of calls that ended without a reply: one line a second at most for each reason,
/// for there may be thousands in a second when a server dies. It belongs to one thread.
class LostCallsReport
{
public:
    explicit LostCallsReport(std::string service) : m_service(std::move(service)) {}

    void count(CallFailure reason) { ++m_counts.at(static_cast<std::size_t>(reason)); }
    /// Writes what has been counted, when it is time.
    void write_when_due(Clock::time_point now);
    void write_all();
    /// When to call write_when_due() next; never when there is nothing to tell.
    Clock::time_point due() const;

private:
    static constexpr std::size_t reasons = 6;

    std::string m_service;
    std::array<std::size_t, reasons> m_counts{};
    Clock::time_point m_quiet_until{};
};

} // namespace org::opensplice::DDS_RMI

#endif
