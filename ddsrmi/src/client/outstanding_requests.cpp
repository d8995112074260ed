// SPDX-License-Identifier: Apache-2.0
#include "client/outstanding_requests.h"

#include <iterator>
#include <utility>

namespace org::opensplice::DDS_RMI {

std::optional<OutstandingRequests::Added> OutstandingRequests::add(const Request& request,
                                                                   Clock::time_point patience)
{
    std::unique_lock lock(m_mutex);
    if (!m_room.wait_until(lock, patience, [this] { return m_by_id.size() < m_limit; }))
        return std::nullopt;

    const DDS::ULong id = unused_id();
    const auto entry = m_by_deadline.insert(position_for(request.deadline), Entry{id, request});
    m_by_id.emplace(id, entry);
    ++m_count_by_link[request.link];

    const bool moved = request.deadline < m_planned_wake_up;
    if (moved)
        m_planned_wake_up = request.deadline;
    return Added{id, moved};
}

std::optional<Handler> OutstandingRequests::take(DDS::ULong id, std::size_t operation, std::uint64_t link)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_by_id.find(id);
    if (found == m_by_id.end())
        return std::nullopt;
    const Request& request = found->second->request;
    if (request.operation != operation || request.link != link)
        return std::nullopt;
    return remove(found->second);
}

void OutstandingRequests::withdraw(DDS::ULong id)
{
    Handler released;
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_by_id.find(id); found != m_by_id.end())
        released = remove(found->second);
}

std::vector<Handler> OutstandingRequests::take_expired(Clock::time_point now)
{
    std::vector<Handler> expired;
    const std::lock_guard lock(m_mutex);
    while (!m_by_deadline.empty() && m_by_deadline.front().request.deadline <= now)
        expired.push_back(remove(m_by_deadline.begin()));
    return expired;
}

std::vector<Handler> OutstandingRequests::take_all()
{
    return take_expired(Clock::time_point::max());
}

Clock::time_point OutstandingRequests::plan_wake_up(Clock::time_point now)
{
    const std::lock_guard lock(m_mutex);
    if (!m_by_deadline.empty())
        m_planned_wake_up = m_by_deadline.front().request.deadline;
    else if (m_planned_wake_up <= now)
        m_planned_wake_up = Clock::time_point::max();
    return m_planned_wake_up;
}

bool OutstandingRequests::any_on(std::uint64_t link) const
{
    const std::lock_guard lock(m_mutex);
    return m_count_by_link.count(link) != 0;
}

DDS::ULong OutstandingRequests::unused_id()
{
    do
        ++m_last_id;
    while (m_by_id.count(m_last_id) != 0);
    return m_last_id;
}

// Deadlines come in order unless the timeout is changed, so the search from the end is short.
OutstandingRequests::Entries::iterator OutstandingRequests::position_for(Clock::time_point deadline)
{
    auto position = m_by_deadline.end();
    while (position != m_by_deadline.begin() && std::prev(position)->request.deadline > deadline)
        --position;
    return position;
}

Handler OutstandingRequests::remove(Entries::iterator entry)
{
    Handler handler = entry->request.handler;
    const auto count = m_count_by_link.find(entry->request.link);
    if (--count->second == 0)
        m_count_by_link.erase(count);
    m_by_id.erase(entry->id);
    m_by_deadline.erase(entry);
    m_room.notify_one();
    return handler;
}

} // namespace org::opensplice::DDS_RMI
