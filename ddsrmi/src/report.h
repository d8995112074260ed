// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_REPORT_H
#define DDSRMI_REPORT_H

#include <chrono>
#include <cstdint>
#include <exception>
#include <mutex>
#include <string>

namespace org::opensplice::DDS_RMI {

/// Writes one line to standard error, after the layer's name.
void report(const std::string& message);

/// Reports the exception that is being handled: "<where> threw <what>".
void report_current_exception(const std::string& where);

/// Counts events that may come in floods and reports them: the first at once, then at most one line in ten
/// seconds with the number so far. Any thread may use it.
class CountedReport
{
public:
    explicit CountedReport(std::string message) : m_message(std::move(message)) {}
    CountedReport(const CountedReport&) = delete;
    CountedReport& operator=(const CountedReport&) = delete;

    /// `detail` goes into the line when there is one.
    void count(std::uint64_t events = 1, const std::string& detail = {});
    std::uint64_t total() const;

private:
    const std::string m_message;
    mutable std::mutex m_mutex;
    std::uint64_t m_total = 0;                             // guarded by m_mutex
    std::chrono::steady_clock::time_point m_quiet_until{}; // guarded by m_mutex
};

} // namespace org::opensplice::DDS_RMI

#endif
