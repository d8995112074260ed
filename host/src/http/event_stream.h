// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_EVENT_STREAM_H
#define ZORBD_EVENT_STREAM_H

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

#include "events/event_feed.h"
#include "http/connection_registry.h"
#include "http/io_threads.h"
#include "http/request_gate.h"

struct MHD_Connection;

namespace zorbd {

/// The id after which a client wants its events, from the header Last-Event-ID or, where there is none, from
/// the query parameter last_event_id; nothing when it names none.
std::variant<std::optional<std::uint64_t>, Refusal> resume_point(MHD_Connection& connection);

/// Reads such an id; nothing when the text is no number that an event can have.
std::optional<std::uint64_t> parse_event_id(std::string_view text);

/// Begins to answer a request with the stream of events: with its head, and with events as they come for as
/// long as the client reads them. Refuses it when there are too many listeners.
std::optional<Refusal> answer_with_events(MHD_Connection& connection, EventFeed& feed,
                                          std::optional<std::uint64_t> after, IoThreads& threads,
                                          ConnectionRegistry& connections,
                                          ConnectionRegistry::Connection& registered);

/// Answers with the head of the stream alone.
void answer_with_event_head(MHD_Connection& connection);

} // namespace zorbd

#endif
