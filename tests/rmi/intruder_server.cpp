// SPDX-License-Identifier: Apache-2.0
#include "intruder_server.h"

#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>

#include "drill_InterfaceInfo.h"

namespace intruder {

namespace {

using drill::ForeignServer;
using drill::rmi::ReplyKind;
using drill::rmi::RequestKind;

constexpr std::uint64_t latest_epoch = std::numeric_limits<std::uint64_t>::max();

const drill::rmi::InterfaceInfo& range()
{
    return DDS_RMI::Drill::Range_interface_info();
}

ForeignServer::Grant grant_of(UnreliableServer::Manner manner)
{
    constexpr std::uint64_t plenty = 1'000'000;
    return manner == UnreliableServer::Manner::busy ? ForeignServer::Grant{0, 0}
                                                    : ForeignServer::Grant{plenty, plenty};
}

} // namespace

FalseAnnouncements::FalseAnnouncements()
{
    const unsigned own = drill::rmi::wire_version;
    for (const unsigned version : {own, own - 1, own + 1})
        for (const char* const partition : {"", "*", "0badc0de-1"})
            m_peer.make_reader(DDS_RMI_Request_desc, range().request_topic, partition,
                               drill::announcement(range(), "drill", 1, latest_epoch, version));
}

UnreliableServer::UnreliableServer(Manner manner)
    : m_manner(manner), m_server(range(), "drill", 1, latest_epoch), m_thread([this] { serve(); })
{
}

UnreliableServer::~UnreliableServer()
{
    m_ended = true;
    m_thread.join();
}

void UnreliableServer::serve()
{
    try {
        while (!m_ended)
            if (const auto heard = m_server.listen(DDS_MSECS(100)))
                answer(*heard);
    } catch (const std::exception& error) {
        std::cerr << "drill_intruder: " << error.what() << std::endl;
    }
}

void UnreliableServer::answer(const ForeignServer::Heard& heard)
{
    const bool is_another_hello = heard.kind == RequestKind::hello && heard.number == m_meeting;
    if (heard.kind == RequestKind::hello)
        m_meeting = heard.number;
    const bool begins = heard.kind == RequestKind::hello || heard.kind == RequestKind::call;
    if (begins && !is_another_hello)
        m_session = drill::rmi::make_session_id();
    if (begins)
        m_server.welcome(m_meeting, m_session, grant_of(m_manner));
    else if (heard.kind == RequestKind::ping)
        m_server.say(ReplyKind::pong, heard.session, 0, grant_of(m_manner));
    else
        m_server.say(ReplyKind::grant, heard.session, 0, grant_of(m_manner));
}

} // namespace intruder
