// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "commands.h"
#include "event_reader.h"
#include "exit_code.h"

namespace zorbctl {
namespace {

/// The event as one line for people.
std::string text_of(const Event& event)
{
    const std::string time = event.data.value("time", "");
    const std::string clock = time.size() > 23 ? time.substr(11, 12) : time;
    if (event.kind == "line")
        return clock + "  " + event.data.value("line", "");
    if (event.kind == "gap")
        return "(" + event.data.value("missed", Json()).dump() + " events were missed)";
    return clock + "  [call " + event.data.value("method", "") + ", id " +
           event.data.value("id", Json()).dump() + ", " + event.data.value("duration_us", Json(0)).dump() +
           " us, code " + event.data.value("code", Json(0)).dump() + ']';
}

std::string json_of(const Event& event)
{
    Json data = {{"event", event.kind}};
    if (!event.id.empty())
        data["event_id"] = event.id;
    data.update(event.data);
    return data.dump();
}

} // namespace

int watch_events(Client& client, const Options& options)
{
    std::size_t shown = 0;
    EventReader reader([&](const Event& event) {
        if (event.kind.empty())
            return true;
        const std::string text = options.json ? json_of(event) : text_of(event);
        if (text.find(options.filter) == std::string::npos)
            return true;
        std::cout << text << std::endl; // at once, also into a pipe
        return ++shown != options.count.value_or(0) && std::cout.good();
    });
    client.stream(options.after.value_or(""), 0, [&](std::string_view bytes) { return reader.read(bytes); });
    return exit_done;
}

} // namespace zorbctl
