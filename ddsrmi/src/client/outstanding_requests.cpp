// SPDX-License-Identifier: Apache-2.0
#include "client/outstanding_requests.h"

#include <iterator>
#include <utility>

namespace org::opensplice::DDS_RMI {

void OutstandingRequests::add(Number number, OutstandingRequest request)
{
    const auto position = position_for(request.deadline);
    m_by_number.emplace(number, m_by_deadline.insert(position, Entry{number, std::move(request)}));
}

std::optional<OutstandingRequest> OutstandingRequests::take(Number number)
{
    const auto found = m_by_number.find(number);
    if (found == m_by_number.end())
        return std::nullopt;
    return remove(found->second);
}

std::vector<OutstandingRequest> OutstandingRequests::take_expired(Clock::time_point now)
{
    std::vector<OutstandingRequest> expired;
    while (!m_by_deadline.empty() && m_by_deadline.front().request.deadline <= now)
        expired.push_back(remove(m_by_deadline.begin()));
    return expired;
}

// Deadlines come in order unless the timeout is changed, so the search from the end is short.
OutstandingRequests::Entries::iterator OutstandingRequests::position_for(Clock::time_point deadline)
{
    auto position = m_by_deadline.end();
    while (position != m_by_deadline.begin() && std::prev(position)->request.deadline > deadline)
        --position;
    return position;
}

OutstandingRequest OutstandingRequests::remove(Entries::iterator entry)
{
    OutstandingRequest request = std::move(entry->request);
    m_by_number.erase(entry->number);
    m_by_deadline.erase(entry);
    return request;
}

} // namespace org::opensplice::DDS_RMI
