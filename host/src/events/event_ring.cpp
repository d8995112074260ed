// SPDX-License-Identifier: Apache-2.0
#include "events/event_ring.h"

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

std::vector<std::shared_ptr<const Event>> EventRing::read(std::uint64_t from, std::size_t count,
                                                          std::size_t bytes) const
{
    std::vector<std::shared_ptr<const Event>> events;
    std::size_t taken = 0;
    for (auto i = static_cast<std::size_t>(from - oldest()); i < m_events.size() && events.size() < count;
         ++i) {
        taken += size_of(*m_events[i]);
        if (taken > bytes && !events.empty())
            break;
        events.push_back(m_events[i]);
    }
    return events;
}

} // namespace zorbd
