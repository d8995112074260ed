// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_METRICS_H
#define ZORBD_METRICS_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <shared_mutex>
#include <string>
#include <string_view>

namespace zorbd {

/// Text in Prometheus' exposition format.
class MetricsText
{
public:
    /// Begins a metric; its samples follow. `type` is "counter", "gauge" or "histogram".
    void begin(std::string_view name, std::string_view type, std::string_view help);

    /// A sample of it. `labels` is what stands between the braces, or empty; `suffix` follows the name.
    void add(double value, const std::string& labels = {}, std::string_view suffix = {});

    const std::string& text() const { return m_text; }

private:
    std::string m_name;
    std::string m_text;
};

/// A label of a sample, with its value in quotation marks.
std::string metrics_label(std::string_view name, std::string_view value);

/// Counts calls and refusals. Every operation may be called from any thread.
class Metrics
{
public:
    Metrics();
    ~Metrics();
    Metrics(const Metrics&) = delete;
    Metrics& operator=(const Metrics&) = delete;

    /// A call that has ended; `method` must be one of those that are offered, or empty.
    void count_call(std::string_view method, int code, std::chrono::nanoseconds duration);
    /// A request that was not let in; `status` is that of HTTP.
    void count_refusal(unsigned int status);
    /// A connection that was closed at once, because there were too many.
    void count_turned_away() { ++m_turned_away; }

    void write(MetricsText& text) const;

private:
    class CallsOfMethod;
    using Calls = std::map<std::string, std::unique_ptr<CallsOfMethod>, std::less<>>;

    CallsOfMethod& calls_of(std::string_view method);

    mutable std::shared_mutex m_mutex;
    Calls m_calls; ///< guarded by m_mutex; its values count by themselves
    /// By what they are told of under, in the order of the table of reasons.
    std::array<std::atomic<std::uint64_t>, 10> m_refusals{};
    std::atomic<std::uint64_t> m_turned_away{0};
};

} // namespace zorbd

#endif
