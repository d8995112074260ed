// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_ACCEPTOR_H
#define ZORBD_ACCEPTOR_H

#include <chrono>
#include <list>
#include <memory>
#include <thread>
#include <vector>

#include "events/metrics.h"
#include "http/connection_registry.h"
#include "http/http_server.h"
#include "http/transport.h"
#include "system/file_descriptor.h"

namespace zorbd {

/// A listening socket and who serves its connections.
struct Listener
{
    int socket; ///< not blocking; stays the caller's
    bool needs_token;
    /// Whether the bytes are those of HTTP as they are, so that a client without a room can be told so.
    bool is_plain;
    MakeTransport make_transport;
    std::vector<HttpServer*> servers; ///< take turns; must outlive the acceptor
};

/// Takes connections from all listeners on a thread of its own. One for which there is no room is told so,
/// with status 503, and closed.
class Acceptor
{
public:
    /// Starts to accept. `registry` and `metrics` must outlive it. Throws std::system_error.
    Acceptor(std::vector<Listener> listeners, ConnectionRegistry& registry, Metrics& metrics);
    /// Stops.
    ~Acceptor();
    Acceptor(const Acceptor&) = delete;
    Acceptor& operator=(const Acceptor&) = delete;

private:
    using Clock = std::chrono::steady_clock;

    /// A connection that has been turned away, while its client reads why.
    struct TurnedAway
    {
        FileDescriptor socket;
        Clock::time_point until;
    };

    void run();
    bool await();
    bool accept_from(Listener& listener);
    void admit(Listener& listener, FileDescriptor socket, ConnectionRegistry::Place place);
    void turn_away(const Listener& listener, FileDescriptor socket);
    void close_turned_away();

    std::vector<Listener> m_listeners;
    ConnectionRegistry& m_registry;
    Metrics& m_metrics;
    const FileDescriptor m_stop;         ///< an eventfd
    std::list<TurnedAway> m_turned_away; ///< the oldest first
    bool m_is_out_of_files = false;
    std::size_t m_turn = 0;
    std::thread m_thread;
};

} // namespace zorbd

#endif
