// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FOREIGN_SERVER_H
#define TESTS_RMI_FOREIGN_SERVER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foreign_peer.h"
#include "wire/messages.h"

namespace drill {

/// A server without the RMI layer: clients find it by its announcement, and it may then tell them what it
/// likes. What it says reaches all clients of the interface.
class ForeignServer
{
public:
    /// What it has heard of a client.
    struct Heard
    {
        rmi::RequestKind kind;
        std::uint64_t session;
        std::uint64_t number;
        std::uint64_t operation;
        std::vector<std::uint8_t> arguments;
    };
    struct Grant
    {
        std::uint64_t requests;
        std::uint64_t bytes;
    };

    ForeignServer(const rmi::InterfaceInfo& interface_info, const std::string& service, std::int32_t instance,
                  std::uint64_t epoch);

    /// Nothing when nothing is heard within that time.
    std::optional<Heard> listen(dds_duration_t patience) const;

    void welcome(std::uint64_t meeting, std::uint64_t session, Grant grant);
    void say(rmi::ReplyKind kind, std::uint64_t session, std::uint64_t number, Grant grant,
             std::vector<std::uint8_t> result = {}) const;
    void send(const DDS_RMI_Reply& reply) const { write(m_writer, &reply); }

    const ForeignPeer& peer() const { return m_peer; }
    dds_entity_t writer() const { return m_writer; }

private:
    const ForeignPeer m_peer;
    const dds_entity_t m_writer;
    const dds_entity_t m_reader;
    Introduction m_introduction;
};

/// A message without contents.
DDS_RMI_Reply make_reply(rmi::ReplyKind kind, std::uint64_t session, std::uint64_t number,
                         ForeignServer::Grant grant);

} // namespace drill

#endif
