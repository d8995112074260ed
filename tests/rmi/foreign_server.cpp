// SPDX-License-Identifier: Apache-2.0
#include "foreign_server.h"

namespace drill {

DDS_RMI_Reply make_reply(rmi::ReplyKind kind, std::uint64_t session, std::uint64_t number,
                         ForeignServer::Grant grant)
{
    DDS_RMI_Reply reply{};
    reply.wire_version = rmi::wire_version;
    reply.kind = static_cast<std::uint16_t>(kind);
    reply.session = session;
    reply.number = number;
    reply.granted_requests = grant.requests;
    reply.granted_bytes = grant.bytes;
    return reply;
}

ForeignServer::ForeignServer(const rmi::InterfaceInfo& interface_info, const std::string& service,
                             std::int32_t instance, std::uint64_t epoch)
    : m_writer(m_peer.make_writer(DDS_RMI_Reply_desc, interface_info.reply_topic, "*")),
      m_reader(m_peer.make_reader(DDS_RMI_Request_desc, interface_info.request_topic, m_peer.make_path(),
                                  announcement(interface_info, service, instance, epoch, rmi::wire_version))),
      m_introduction(interface_info, service, instance)
{
}

std::optional<ForeignServer::Heard> ForeignServer::listen(dds_duration_t patience) const
{
    while (true) {
        const Taken<DDS_RMI_Request> taken(m_reader);
        if (!taken.has_come()) {
            if (!wait_for_message(m_peer, m_reader, patience))
                return std::nullopt;
            continue;
        }
        if (!taken.is_valid())
            continue;
        const DDS_RMI_Request& request = taken.message();
        const auto* const arguments = request.arguments._buffer;
        return Heard{static_cast<rmi::RequestKind>(request.kind),
                     request.session,
                     request.number,
                     request.operation,
                     {arguments, arguments + request.arguments._length}};
    }
}

void ForeignServer::welcome(std::uint64_t meeting, std::uint64_t session, Grant grant)
{
    DDS_RMI_Reply welcome = make_reply(rmi::ReplyKind::welcome, session, meeting, grant);
    m_introduction.put_into(welcome);
    send(welcome);
}

void ForeignServer::say(rmi::ReplyKind kind, std::uint64_t session, std::uint64_t number, Grant grant,
                        std::vector<std::uint8_t> result) const
{
    DDS_RMI_Reply reply = make_reply(kind, session, number, grant);
    reply.result._buffer = result.data();
    reply.result._length = static_cast<std::uint32_t>(result.size());
    reply.result._maximum = reply.result._length;
    send(reply);
}

} // namespace drill
