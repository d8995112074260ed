// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_EVENT_STREAM_H
#define ZORBD_EVENT_STREAM_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "events/event_feed.h"
#include "http/route_table.h"

namespace zorbd {

/// Reads the id of an event; nothing when the text is no number that an event can have.
std::optional<std::uint64_t> parse_event_id(std::string_view text);

/// Answers with the events of `feed`, which must outlive it, as Server-Sent Events. A client names the event
/// after which it wants to go on in the header Last-Event-ID or the query parameter last_event_id.
OpenStream event_stream(EventFeed& feed);

} // namespace zorbd

#endif
