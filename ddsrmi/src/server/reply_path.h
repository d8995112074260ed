// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_REPLY_PATH_H
#define DDSRMI_SERVER_REPLY_PATH_H

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "dds/entity.h"
#include "dds/partitioned.h"
#include "dds/signal.h"
#include "ddsrmi/dds_types.h"
#include "ddsrmi/interface_info.h"
#include "server/admission.h"
#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

/// A message on its way to a client.
struct OutgoingReply
{
    ReplyKind kind;
    std::uint64_t session;
    std::uint64_t number = 0;
    RoomUsed granted{0, 0};
    std::vector<DDS::Octet> result;
};

/// The way of replies to one client: a writer in the client's own partition, so that nobody waits for
/// another's acknowledgements. Sending never waits: what a slow client has not taken in is kept here. Any
/// thread may use it.
class ReplyPath
{
public:
    /// `signal` is raised when flush() is needed.
    ReplyPath(const Entity& participant, const InterfaceInfo& interface_info, const std::string& client,
              std::shared_ptr<Signal> signal);
    ReplyPath(const ReplyPath&) = delete;
    ReplyPath& operator=(const ReplyPath&) = delete;

    void send(OutgoingReply reply);
    /// The answer to a hello, with our view of the interface. It may be lost; the client then asks again.
    /// `most_bytes`: what the client may have waiting at a time.
    void welcome(ReplyKind kind, std::uint64_t session, std::uint64_t meeting, RoomUsed granted,
                 std::uint64_t most_bytes) const;

    /// Sends what is kept, as far as the client has room; whether that was anything. To be called again soon
    /// while is_lagging().
    bool flush();
    bool is_lagging() const;
    /// Whether so much is kept that nothing more should be run for this client.
    bool is_overfull() const;

private:
    bool write(const OutgoingReply& reply) const;

    const InterfaceInfo& m_interface;
    const std::shared_ptr<Signal> m_signal;
    const EntityListener m_listener;
    const Partitioned m_writer;

    mutable std::mutex m_mutex; // guards all below; Cyclone is called under it, which never waits here
    std::deque<OutgoingReply> m_waiting;
    std::uint64_t m_waiting_bytes = 0;
};

} // namespace org::opensplice::DDS_RMI

#endif
