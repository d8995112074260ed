// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_CLIENT_SESSION_H
#define DDSRMI_CLIENT_CLIENT_SESSION_H

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "client/outstanding_requests.h"
#include "clock.h"
#include "dds/partitioned.h"
#include "ddsrmi/interface_info.h"

namespace org::opensplice::DDS_RMI {

/// The client's side of a session: its requests are numbered in it, and each is noted until it has ended.
/// Requests are sent in the order of their numbers, and no more than the server has granted.
///
/// Any thread may use it. One sender at a time has the turn to write; m_mutex is not held meanwhile.
class ClientSession
{
public:
    struct Grant
    {
        std::uint64_t requests;
        std::uint64_t bytes;
    };
    struct Call
    {
        std::size_t operation;
        DDS::ULongLong hash;
        const std::vector<DDS::Octet>& arguments;
        const Handler& handler;
        std::chrono::milliseconds timeout;
    };
    enum class Sent {
        yes,
        yes_and_due_early, ///< before what plan_wake_up() has said
        no_room,
        too_large, ///< for this server, ever
        ended,
    };

    /// `most_bytes`: what the server lets a client have waiting at a time.
    ClientSession(std::shared_ptr<const Partitioned> request_writer, std::uint64_t id, Grant grant,
                  std::uint64_t most_bytes);

    std::uint64_t id() const { return m_id; }

    /// Sends a request once there is room for it, which is waited for until `patience`. Throws what Cyclone
    /// says.
    Sent send(const Call& call, Clock::time_point patience);
    /// Asks whether the server is there. Waits for nothing.
    void ping() const;

    /// Where requests and bytes that the server takes are counted from the beginning of the session on.
    void grant(Grant grant);

    /// The request that a reply belongs to; nothing when it is not outstanding.
    std::optional<OutstandingRequest> take(std::uint64_t number);
    std::vector<OutstandingRequest> take_expired(Clock::time_point now);
    /// Nothing is sent any more. Gives what is outstanding.
    std::vector<OutstandingRequest> end();

    bool has_outstanding() const;
    /// When to look for expired requests next.
    Clock::time_point plan_wake_up(Clock::time_point now);

private:
    using Lock = std::unique_lock<std::mutex>;

    bool has_room(std::uint64_t cost) const;
    bool wait_for_room(Lock& lock, std::uint64_t cost, Clock::time_point patience);
    bool ask_for_room(Lock& lock, std::uint64_t cost);
    dds_return_t write_in_turn(Lock& lock, std::uint64_t number, const Call& call,
                               Clock::time_point patience);
    void give_turn_back();
    dds_return_t write(std::uint64_t number, const Call& call) const;

    const std::shared_ptr<const Partitioned> m_writer;
    const std::uint64_t m_id;
    const std::uint64_t m_most_bytes;

    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    Grant m_granted;
    Grant m_sent{0, 0};
    Grant m_asked{0, 0};
    bool m_turn_taken = false;
    unsigned m_waiting = 0;
    bool m_ended = false;
    OutstandingRequests m_outstanding;
    // May be earlier than any deadline: a proxy with one request at a time then need not wake its thread for
    // each.
    Clock::time_point m_planned_wake_up = Clock::time_point::max();
};

} // namespace org::opensplice::DDS_RMI

#endif
