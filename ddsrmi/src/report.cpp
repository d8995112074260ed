// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <cstdio>

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::chrono::seconds quiet_time{10};

} // namespace

void report(const std::string& message)
{
    std::fprintf(stderr, "ddsrmi: %s\n", message.c_str());
}

void report_current_exception(const std::string& where)
{
    try {
        throw;
    } catch (const std::exception& failure) {
        report(where + " threw: " + failure.what());
    } catch (...) {
        report(where + " threw something that is no std::exception");
    }
}

void CountedReport::count(std::uint64_t events, const std::string& detail)
{
    const auto now = std::chrono::steady_clock::now();
    std::uint64_t total = 0;
    {
        const std::lock_guard lock(m_mutex);
        m_total += events;
        if (now < m_quiet_until)
            return;
        m_quiet_until = now + quiet_time;
        total = m_total;
    }
    report(m_message + (detail.empty() ? "" : ": " + detail) + " (" + std::to_string(total) + " so far)");
}

std::uint64_t CountedReport::total() const
{
    const std::lock_guard lock(m_mutex);
    return m_total;
}

} // namespace org::opensplice::DDS_RMI
