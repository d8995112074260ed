// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_EVENT_H
#define ZORBD_EVENT_H

#include <chrono>
#include <cstdint>
#include <string>

namespace zorbd {

enum class EventKind {
    line, ///< a plug-in has written a line
    call, ///< a call has ended
};

/// What is told to listeners.
struct Event
{
    std::uint64_t id = 0; ///< from 1, one more each time
    std::chrono::system_clock::time_point time;
    EventKind kind = EventKind::line;
    std::string plugin; ///< of a line: the plug-in's file, where it is known
    std::string text;   ///< the line; of a call, the members of its JSON object
};

/// The event as one of a Server-Sent Events stream.
std::string to_event_stream(const Event& event);

/// What a listener is told when it has missed events: how many, or "null" when that is not known, and the id
/// of the next one.
std::string missed_notice(const std::string& count, std::uint64_t next);

/// A time as text: UTC, with microseconds.
std::string time_text(std::chrono::system_clock::time_point time);

} // namespace zorbd

#endif
