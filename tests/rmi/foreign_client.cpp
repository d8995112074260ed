// SPDX-License-Identifier: Apache-2.0
#include "foreign_client.h"

#include <optional>
#include <stdexcept>

namespace drill {

namespace {

constexpr dds_duration_t hello_pause = DDS_MSECS(100);
constexpr std::uint32_t caller_patience_ms = 60'000;

/// The next message but grants; nothing when none comes.
std::optional<ForeignClient::Heard> hear(const ForeignPeer& peer, dds_entity_t reader,
                                         dds_duration_t patience)
{
    while (true) {
        const Taken<DDS_RMI_Reply> taken(reader);
        if (!taken.has_come()) {
            if (!wait_for_message(peer, reader, patience))
                return std::nullopt;
            continue;
        }
        if (!taken.is_valid())
            continue;
        const DDS_RMI_Reply& reply = taken.message();
        const auto kind = static_cast<rmi::ReplyKind>(reply.kind);
        if (kind != rmi::ReplyKind::grant)
            return ForeignClient::Heard{kind, reply.session, reply.number, reply.granted_requests};
    }
}

} // namespace

DDS_RMI_Request make_request(rmi::RequestKind kind, std::uint64_t session, std::uint64_t number)
{
    DDS_RMI_Request request{};
    request.wire_version = rmi::wire_version;
    request.kind = static_cast<std::uint16_t>(kind);
    request.patience_ms = caller_patience_ms;
    request.session = session;
    request.number = number;
    return request;
}

ForeignClient::ForeignClient(const rmi::InterfaceInfo& interface_info, const std::string& service,
                             std::int32_t instance)
    : m_interface(interface_info), m_path(m_peer.make_path()),
      m_reader(m_peer.make_reader(DDS_RMI_Reply_desc, interface_info.reply_topic, m_path)),
      m_writer(m_peer.make_writer(DDS_RMI_Request_desc, interface_info.request_topic, "*", m_path)),
      m_introduction(interface_info, service, instance)
{
    m_peer.wait_for_reader(m_writer);
}

// Hello is repeated, because the server may not have matched this client's endpoints yet.
ForeignClient::Heard ForeignClient::begin_session()
{
    const std::uint64_t meeting = rmi::make_session_id();
    for (dds_duration_t waited = 0; waited < foreign_patience; waited += hello_pause) {
        say_hello(meeting);
        while (const auto heard = hear(m_peer, m_reader, hello_pause)) {
            if (heard->kind != rmi::ReplyKind::welcome || heard->number != meeting)
                continue;
            m_session = heard->session;
            return *heard;
        }
    }
    throw std::runtime_error("no server has said welcome");
}

void ForeignClient::say_hello(std::uint64_t meeting)
{
    DDS_RMI_Request hello = make_request(rmi::RequestKind::hello, 0, meeting);
    m_introduction.put_into(hello);
    send(hello);
}

void ForeignClient::say(rmi::RequestKind kind, std::uint64_t session, std::uint64_t number) const
{
    send(make_request(kind, session, number));
}

void ForeignClient::call(std::uint64_t number, const std::string& operation,
                         std::vector<std::uint8_t> arguments) const
{
    DDS_RMI_Request request = make_request(rmi::RequestKind::call, m_session, number);
    request.operation = hash_of(m_interface, operation);
    request.arguments._buffer = arguments.data();
    request.arguments._length = static_cast<std::uint32_t>(arguments.size());
    request.arguments._maximum = request.arguments._length;
    send(request);
}

ForeignClient::Heard ForeignClient::listen() const
{
    while (const auto heard = hear(m_peer, m_reader, foreign_patience))
        if (heard->kind != rmi::ReplyKind::welcome) // which comes for each hello
            return *heard;
    throw std::runtime_error("the server says nothing");
}

ForeignClient::Heard ForeignClient::listen_for(rmi::ReplyKind kind) const
{
    Heard heard = listen();
    while (heard.kind != kind)
        heard = listen();
    return heard;
}

} // namespace drill
