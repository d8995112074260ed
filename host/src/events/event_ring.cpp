// SPDX-License-Identifier: Apache-2.0
#include "events/event_ring.h"

#include <algorithm>
#include <utility>

namespace zorbd {
namespace {

std::size_t size_of(const Event& event)
{
    constexpr std::size_t bookkeeping = 48; // of the memory that holds it, about
    return sizeof event + event.plugin.size() + event.text.size() + bookkeeping;
}

} // namespace

void EventRing::add(Event event)
{
    event.id = m_latest + 1;
    m_events.push_back(std::make_shared<const Event>(std::move(event)));
    ++m_latest;
    m_bytes += size_of(*m_events.back());
    while (m_bytes > m_max_bytes) {
        m_bytes -= size_of(*m_events.front());
        m_events.pop_front();
    }
}

std::vector<std::shared_ptr<const Event>> EventRing::read(std::uint64_t from, std::size_t count) const
{
    const auto begin = m_events.begin() + static_cast<std::ptrdiff_t>(from - oldest());
    return {begin, begin + static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(count, m_latest + 1 - from))};
}

} // namespace zorbd
