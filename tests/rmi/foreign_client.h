// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FOREIGN_CLIENT_H
#define TESTS_RMI_FOREIGN_CLIENT_H

#include <cstdint>
#include <string>
#include <vector>

#include "foreign_peer.h"
#include "wire/messages.h"

namespace drill {

/// A client without the RMI layer: it has a reply path and can begin a session, and may then say what it
/// likes. Throws std::runtime_error when the server does not answer.
class ForeignClient
{
public:
    /// What it has heard of its server.
    struct Heard
    {
        rmi::ReplyKind kind;
        std::uint64_t session;
        std::uint64_t number;
        std::uint64_t granted_requests;
    };

    ForeignClient(const rmi::InterfaceInfo& interface_info, const std::string& service,
                  std::int32_t instance);

    /// Begins a session anew; gives what the server has granted.
    Heard begin_session();
    std::uint64_t session() const { return m_session; }

    void say_hello(std::uint64_t meeting);
    void say(rmi::RequestKind kind, std::uint64_t session, std::uint64_t number) const;
    void call(std::uint64_t number, const std::string& operation, std::vector<std::uint8_t> arguments) const;
    void send(const DDS_RMI_Request& request) const { write(m_writer, &request); }

    /// The next message that neither grants anything nor begins a session.
    Heard listen() const;
    /// Passes over all that comes before a message of that kind.
    Heard listen_for(rmi::ReplyKind kind) const;
    void wait_for_acknowledgements() const { drill::wait_for_acknowledgements(m_writer); }

private:
    const rmi::InterfaceInfo& m_interface;
    const ForeignPeer m_peer;
    const std::string m_path;
    const dds_entity_t m_reader;
    const dds_entity_t m_writer;
    Introduction m_introduction;
    std::uint64_t m_session = 0;
};

/// A message without contents.
DDS_RMI_Request make_request(rmi::RequestKind kind, std::uint64_t session, std::uint64_t number);

} // namespace drill

#endif
