// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_OUTSTANDING_REQUESTS_H
#define DDSRMI_CLIENT_OUTSTANDING_REQUESTS_H

#include <cstdint>
#include <list>
#include <optional>
#include <unordered_map>
#include <vector>

#include "clock.h"
#include "ddsrmi/async_reply_handler.h"
#include "ddsrmi/shared_ptr.h"

namespace org::opensplice::DDS_RMI {

using Handler = shared_ptr<CAsyncReplyHandlerImpl>;

/// A call that waits for its reply.
struct OutstandingRequest
{
    Handler handler;
    std::size_t operation;
    Clock::time_point deadline;
};

/// The requests of one session whose replies have not come. Finding, adding and removing one costs the same
/// however many there are. Not thread-safe.
class OutstandingRequests
{
public:
    using Number = std::uint64_t;

    void add(Number number, OutstandingRequest request);

    /// Nothing when no such request is outstanding.
    std::optional<OutstandingRequest> take(Number number);
    std::vector<OutstandingRequest> take_expired(Clock::time_point now);
    std::vector<OutstandingRequest> take_all() { return take_expired(Clock::time_point::max()); }

    bool empty() const { return m_by_number.empty(); }
    /// Of the request that is due first; never when there is none.
    Clock::time_point first_deadline() const
    {
        return empty() ? Clock::time_point::max() : m_by_deadline.front().request.deadline;
    }

private:
    struct Entry
    {
        Number number;
        OutstandingRequest request;
    };
    using Entries = std::list<Entry>;

    Entries::iterator position_for(Clock::time_point deadline);
    OutstandingRequest remove(Entries::iterator entry);

    Entries m_by_deadline;
    std::unordered_map<Number, Entries::iterator> m_by_number;
};

} // namespace org::opensplice::DDS_RMI

#endif
