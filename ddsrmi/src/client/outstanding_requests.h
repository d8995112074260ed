// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_OUTSTANDING_REQUESTS_H
#define DDSRMI_CLIENT_OUTSTANDING_REQUESTS_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "ddsrmi/async_reply_handler.h"
#include "ddsrmi/shared_ptr.h"

namespace org::opensplice::DDS_RMI {

using Handler = shared_ptr<CAsyncReplyHandlerImpl>;
using Clock = std::chrono::steady_clock;

/// The requests of one proxy whose replies have not come. Finding, adding and removing one costs the same
/// however many there are. Any thread may use it; handlers are given back, never called or released, under
/// its lock.
class OutstandingRequests
{
public:
    struct Request
    {
        Handler handler;
        std::size_t operation;
        std::uint64_t link; ///< the number of the link that carries it
        Clock::time_point deadline;
    };
    struct Added
    {
        DDS::ULong id;
        bool next_deadline_moved; ///< it is due before anything that plan_wake_up() knew of
    };

    explicit OutstandingRequests(std::size_t limit) : m_limit(limit) {}

    /// Nothing when there are as many as the limit allows, and stay so until `patience`.
    std::optional<Added> add(const Request& request, Clock::time_point patience);

    /// Removes the request that a reply belongs to. Nothing when no such request is outstanding.
    std::optional<Handler> take(DDS::ULong id, std::size_t operation, std::uint64_t link);
    /// Removes a request that could not be sent.
    void withdraw(DDS::ULong id);
    std::vector<Handler> take_expired(Clock::time_point now);
    std::vector<Handler> take_all();

    /// When to look for expired requests next.
    Clock::time_point plan_wake_up(Clock::time_point now);

    bool any_on(std::uint64_t link) const;

private:
    struct Entry
    {
        DDS::ULong id;
        Request request;
    };
    using Entries = std::list<Entry>;

    DDS::ULong unused_id();
    Entries::iterator position_for(Clock::time_point deadline);
    Handler remove(Entries::iterator entry);

    const std::size_t m_limit;
    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_room;
    DDS::ULong m_last_id = 0;
    Entries m_by_deadline;
    std::unordered_map<DDS::ULong, Entries::iterator> m_by_id;
    std::unordered_map<std::uint64_t, std::size_t> m_count_by_link;
    // May be earlier than any deadline: a proxy with one request at a time then need not wake its thread for
    // each of them.
    Clock::time_point m_planned_wake_up = Clock::time_point::max();
};

} // namespace org::opensplice::DDS_RMI

#endif
