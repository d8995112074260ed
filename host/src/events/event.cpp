// SPDX-License-Identifier: Apache-2.0
#include "events/event.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "json/json_quote.h"

namespace zorbd {

using strict_json::quoted_json;

std::string time_text(std::chrono::system_clock::time_point time)
{
    const auto since_epoch = time.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(since_epoch);
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(since_epoch - seconds);
    const auto whole = static_cast<std::time_t>(seconds.count());
    std::tm parts{};
    gmtime_r(&whole, &parts);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::array<char, 16> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%06dZ", static_cast<int>(micros.count()));
    return std::string(date.data()) + fraction.data();
}

std::string to_event_stream(const Event& event)
{
    std::string text = "id: " + std::to_string(event.id);
    text += event.kind == EventKind::line ? "\nevent: line\ndata: {\"time\":\""
                                          : "\nevent: call\ndata: {\"time\":\"";
    text += time_text(event.time) + "\",";
    if (event.kind == EventKind::line) {
        if (!event.plugin.empty())
            text += "\"plugin\":" + quoted_json(event.plugin) + ',';
        text += "\"line\":" + quoted_json(event.text);
    } else {
        text += event.text;
    }
    return text + "}\n\n";
}

std::string missed_notice(const std::string& count, std::uint64_t next)
{
    return "event: gap\ndata: {\"missed\":" + count + ",\"next\":" + std::to_string(next) + "}\n\n";
}

} // namespace zorbd
