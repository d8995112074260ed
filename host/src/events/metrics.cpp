// SPDX-License-Identifier: Apache-2.0
#include "events/metrics.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <mutex>

namespace zorbd {
namespace {

/// The upper bounds of the histogram's buckets, in seconds.
constexpr double bounds[] = {0.0001, 0.00025, 0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025,
                             0.05,   0.1,     0.25,   0.5,   1,      2.5,   5,    10};

struct Reason
{
    unsigned int status;
    const char* name;
};

/// The last one stands for all others.
constexpr Reason reasons[] = {
    {400, "bad_request"},    {401, "token"},        {403, "origin"},         {404, "path"}, {405, "method"},
    {413, "body_too_large"}, {415, "content_type"}, {431, "head_too_large"}, {503, "busy"}, {0, "other"}};

/// As short as it can be without losing anything.
std::string number_text(double value)
{
    char text[32];
    for (const int digits : {6, 9, 17}) {
        std::snprintf(text, sizeof text, "%.*g", digits, value);
        if (std::strtod(text, nullptr) == value)
            break;
    }
    return text;
}

double in_seconds(std::chrono::nanoseconds duration)
{
    return std::chrono::duration<double>(duration).count();
}

} // namespace

void MetricsText::begin(std::string_view name, std::string_view type, std::string_view help)
{
    m_name = name;
    m_text.append("# HELP ").append(name).append(" ").append(help);
    m_text.append("\n# TYPE ").append(name).append(" ").append(type).append("\n");
}

void MetricsText::add(double value, const std::string& labels, std::string_view suffix)
{
    m_text.append(m_name).append(suffix);
    if (!labels.empty())
        m_text.append("{").append(labels).append("}");
    m_text.append(" ").append(number_text(value)).append("\n");
}

std::string metrics_label(std::string_view name, std::string_view value)
{
    std::string label = std::string(name) + "=\"";
    for (const char c : value) {
        if (c == '"' || c == '\\')
            label += '\\';
        if (c == '\n')
            label += "\\n";
        else
            label += c;
    }
    return label + '"';
}

/// The calls of one method: how many ended with which code, and how long they took.
class Metrics::CallsOfMethod
{
public:
    void count(int code, std::chrono::nanoseconds duration)
    {
        constexpr auto relaxed = std::memory_order_relaxed;
        if (code == 0)
            m_succeeded.fetch_add(1, relaxed);
        else
            count_failed(code);
        const auto bucket = std::lower_bound(std::begin(bounds), std::end(bounds), in_seconds(duration));
        m_buckets[static_cast<std::size_t>(bucket - std::begin(bounds))].fetch_add(1, relaxed);
        m_nanoseconds.fetch_add(static_cast<std::uint64_t>(duration.count()), relaxed);
    }

    void write_counts(MetricsText& text, const std::string& method) const
    {
        const auto write = [&](const std::string& code, std::uint64_t count) {
            if (count != 0)
                text.add(static_cast<double>(count), method + ',' + metrics_label("code", code));
        };
        write("0", m_succeeded);
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& [code, count] : m_failed)
            write(std::to_string(code), count);
        write("other", m_failed_otherwise);
    }

    void write_durations(MetricsText& text, const std::string& method) const
    {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < m_buckets.size(); ++i) {
            sum += m_buckets[i];
            const std::string bound = i < std::size(bounds) ? number_text(bounds[i]) : "+Inf";
            text.add(static_cast<double>(sum), method + ',' + metrics_label("le", bound), "_bucket");
        }
        text.add(static_cast<double>(m_nanoseconds) / 1e9, method, "_sum");
        text.add(static_cast<double>(sum), method, "_count");
    }

private:
    void count_failed(int code)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_failed.size() < most_codes || m_failed.count(code) != 0)
            ++m_failed[code];
        else
            ++m_failed_otherwise;
    }

    /// A plug-in's methods choose their codes themselves, and each one that is counted stays in memory.
    static constexpr std::size_t most_codes = 50;

    std::atomic<std::uint64_t> m_succeeded{0};
    std::array<std::atomic<std::uint64_t>, std::size(bounds) + 1> m_buckets{};
    std::atomic<std::uint64_t> m_nanoseconds{0};
    mutable std::mutex m_mutex;
    std::map<int, std::uint64_t> m_failed; ///< by code; guarded by m_mutex
    std::uint64_t m_failed_otherwise = 0;  ///< with codes that there was no room for; guarded by m_mutex
};

Metrics::Metrics()
{
    static_assert(std::tuple_size<decltype(m_refusals)>::value == std::size(reasons));
}

Metrics::~Metrics() = default;

void Metrics::count_call(std::string_view method, int code, std::chrono::nanoseconds duration)
{
    calls_of(method).count(code, duration);
}

Metrics::CallsOfMethod& Metrics::calls_of(std::string_view method)
{
    {
        const std::shared_lock<std::shared_mutex> lock(m_mutex);
        const auto found = m_calls.find(method);
        if (found != m_calls.end())
            return *found->second;
    }
    const std::lock_guard<std::shared_mutex> lock(m_mutex);
    auto& calls = m_calls[std::string(method)];
    if (calls == nullptr)
        calls = std::make_unique<CallsOfMethod>();
    return *calls;
}

void Metrics::count_refusal(unsigned int status)
{
    const auto found = std::find_if(std::begin(reasons), std::end(reasons) - 1,
                                    [status](const Reason& reason) { return reason.status == status; });
    ++m_refusals[static_cast<std::size_t>(found - std::begin(reasons))];
}

void Metrics::write(MetricsText& text) const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    text.begin("zorbd_calls_total", "counter",
               "Calls that have ended, by method and by the code of their error (0: none).");
    for (const auto& [method, calls] : m_calls)
        calls->write_counts(text, metrics_label("method", method));
    text.begin("zorbd_call_duration_seconds", "histogram", "How long the calls took.");
    for (const auto& [method, calls] : m_calls)
        calls->write_durations(text, metrics_label("method", method));
    text.begin("zorbd_refusals_total", "counter",
               "Requests and connections that were not let in, by reason.");
    for (std::size_t i = 0; i < m_refusals.size(); ++i)
        text.add(static_cast<double>(m_refusals[i]), metrics_label("reason", reasons[i].name));
    text.add(static_cast<double>(m_turned_away), metrics_label("reason", "connections"));
}

} // namespace zorbd
