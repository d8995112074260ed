// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CONNECTION_REGISTRY_H
#define ZORBD_CONNECTION_REGISTRY_H

#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>

namespace zorbd {

struct ConnectionLimits
{
    std::size_t total = 256;
    /// Connections over a Unix socket have no address and are counted in the total only.
    std::size_t per_address = 128;
    /// How long a connection may go without the first line of a (further) request.
    std::chrono::milliseconds idle{60000};
    /// How long a request may take to come in whole, and its response to be taken.
    std::chrono::milliseconds request{30000};
    /// How long a client that takes events may go without taking any. It is sent something more often.
    std::chrono::milliseconds listening{45000};
};

/// What a connection does at present.
enum class ConnectionPhase { idle, receiving, working, sending, listening };

/// All client connections of all listeners: how many there may be, and how long each phase may last. A
/// connection that takes too long is shut down by a thread of the registry, and its owner then sees its end.
///
/// Every operation may be called from any thread.
class ConnectionRegistry
{
public:
    struct Connection;

    /// Starts the thread. Throws std::system_error.
    explicit ConnectionRegistry(ConnectionLimits limits);
    /// No connection may be left.
    ~ConnectionRegistry();
    ConnectionRegistry(const ConnectionRegistry&) = delete;
    ConnectionRegistry& operator=(const ConnectionRegistry&) = delete;

    const ConnectionLimits& limits() const { return m_limits; }

    /// Whether a client of that address may connect now.
    bool has_room(const sockaddr* address);

    /// How many there are now.
    std::size_t count();

    /// Takes a connection in, idle. `socket` must stay open until it is removed.
    Connection& add(int socket, const sockaddr* address);
    void remove(Connection& connection);

    /// Passes to another phase; to be called by one thread at a time for a connection. False when that is
    /// `working` and no further calls are taken; the phase then stays.
    bool enter(Connection& connection, ConnectionPhase phase);

    /// Takes no further calls.
    void close();
    /// Waits until no connection is in that phase; false when the deadline passes first.
    bool wait_none(ConnectionPhase phase, std::chrono::steady_clock::time_point deadline);

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point deadline_of(ConnectionPhase phase) const;
    bool enter_after_close(Connection& connection, ConnectionPhase before, ConnectionPhase phase);
    void watch();
    Clock::time_point cut_overdue();

    const ConnectionLimits m_limits;
    std::mutex m_mutex;
    std::condition_variable m_watch_changed; ///< the first connection came, or m_stopping
    std::condition_variable m_phase_left;
    std::list<Connection> m_connections;                        ///< guarded by m_mutex
    std::unordered_map<std::string, std::size_t> m_per_address; ///< guarded by m_mutex
    std::atomic<bool> m_closed{false};
    bool m_stopping = false; ///< guarded by m_mutex
    std::thread m_watcher;
};

} // namespace zorbd

#endif
