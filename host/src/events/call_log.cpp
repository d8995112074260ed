// SPDX-License-Identifier: Apache-2.0
#include "events/call_log.h"

#include <string>
#include <utility>

#include "json/json_quote.h"

namespace zorbd {

using strict_json::quoted_json;

namespace {

/// The members of a JSON object that tell of the call.
std::string members_of(const EndedCall& call)
{
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(call.duration).count();
    std::string members = "\"method\":" + quoted_json(call.method) + ",\"id\":";
    members += call.id.empty() ? "null" : call.id;
    if (!call.token.empty())
        members += ",\"token\":" + quoted_json(call.token);
    return members + ",\"duration_us\":" + std::to_string(micros) + ",\"code\":" + std::to_string(call.code);
}

} // namespace

CallLog::CallLog(Metrics& metrics, EventFeed& feed, std::shared_ptr<LineSink> access)
    : m_metrics(metrics), m_feed(feed), m_access(std::move(access))
{
}

void CallLog::add(const EndedCall& call) noexcept
{
    try {
        m_metrics.count_call(call.method, call.code, call.duration);
        if (m_feed.has_listeners())
            m_feed.add_call(members_of(call));
        if (m_access != nullptr)
            m_access->take_line("{\"time\":\"" + time_text(std::chrono::system_clock::now()) +
                                "\",\"peer\":" + quoted_json(call.peer) + ',' + members_of(call) + '}');
    } catch (...) { // NOLINT(bugprone-empty-catch): without memory nothing is told of the call, which goes on
    }
}

} // namespace zorbd
