// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_INTRUDER_SERVER_H
#define TESTS_RMI_INTRUDER_SERVER_H

#include <atomic>
#include <memory>
#include <thread>

#include "foreign_server.h"

namespace intruder {

/// Announcements of the service by servers that do not exist, later ones than all that do; some of them of
/// other wire versions. They stay until it goes.
class FalseAnnouncements
{
public:
    FalseAnnouncements();

private:
    drill::ForeignPeer m_peer;
};

/// A server of the service that meets its clients and lets them down.
class UnreliableServer
{
public:
    enum class Manner {
        busy,     ///< grants nothing, ever
        restless, ///< begins another session whenever it is called
    };

    explicit UnreliableServer(Manner manner);
    ~UnreliableServer();
    UnreliableServer(const UnreliableServer&) = delete;
    UnreliableServer& operator=(const UnreliableServer&) = delete;

private:
    void serve();
    void answer(const drill::ForeignServer::Heard& heard);

    const Manner m_manner;
    drill::ForeignServer m_server;
    std::uint64_t m_meeting = 0; // the last one's; only the thread uses this and the next
    std::uint64_t m_session = 0;
    std::atomic<bool> m_ended{false};
    std::thread m_thread;
};

} // namespace intruder

#endif
