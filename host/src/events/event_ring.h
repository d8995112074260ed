// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_EVENT_RING_H
#define ZORBD_EVENT_RING_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "events/event.h"

namespace zorbd {

/// The latest events, in a bounded number of bytes. Whoever uses it guards it.
class EventRing
{
public:
    explicit EventRing(std::size_t max_bytes) : m_max_bytes(max_bytes) {}

    /// Numbers the event and keeps it; the oldest ones go to make room.
    void add(Event event);

    /// The id of the latest event; 0 before the first.
    std::uint64_t latest() const { return m_latest; }
    /// The id of the oldest event that is kept, or of the next one when none is.
    std::uint64_t oldest() const { return m_latest + 1 - m_events.size(); }

    /// At most `count` events from the one with the id `from`, which must be kept or the next one, and no
    /// more than take `bytes`, unless that is the first one alone.
    std::vector<std::shared_ptr<const Event>> read(std::uint64_t from, std::size_t count,
                                                   std::size_t bytes) const;

private:
    const std::size_t m_max_bytes;
    std::size_t m_bytes = 0;
    std::uint64_t m_latest = 0;
    std::deque<std::shared_ptr<const Event>> m_events;
};

} // namespace zorbd

#endif
