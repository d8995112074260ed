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
#include <utility>

namespace zorbd {

struct ConnectionLimits
{
    /// Over TCP.
    std::size_t total = 256;
    /// Over TCP, from one IPv4 address or one IPv6 network of 64 bits.
    std::size_t per_address = 128;
    /// Over the Unix socket; they take no place from those over TCP, nor the other way round.
    std::size_t unix_total = 64;
    /// How long a connection may go without a valid token, where one is asked for.
    std::chrono::milliseconds token{5000};
    /// How long a connection may go without the first line of a (further) request.
    std::chrono::milliseconds idle{60000};
    /// How long a request may take to come in whole, and its response to be taken.
    std::chrono::milliseconds request{30000};
    /// How long a request may take from when it is whole to its answer; 0 for ever.
    std::chrono::milliseconds call{60000};
    /// How long a client that takes events may go without taking any. It is sent something more often.
    std::chrono::milliseconds listening{45000};
};

/// What a connection does at present.
enum class ConnectionPhase { idle, receiving, working, sending, listening, ending };

/// Who answers for a connection.
class ConnectionOwner
{
public:
    virtual ~ConnectionOwner() = default;
    /// The call of the connection takes too long. Called with the registry's lock held: must not call back.
    virtual void call_is_overdue() noexcept = 0;
};

/// All client connections of all listeners: how many there may be, and how long each phase may last. A
/// connection that takes too long is shut down by a thread of the registry, and its owner then sees its end.
///
/// A connection is a stranger until a request of it has been admitted. When there is no room, a stranger
/// from the address that has the most connections gives its place up to one from an address that has fewer,
/// so that strangers cannot shut anyone out.
///
/// Every operation may be called from any thread.
class ConnectionRegistry
{
    struct Connection;

public:
    /// The place of one connection; to be destroyed before its socket is closed.
    class Place
    {
    public:
        Place() = default;
        ~Place() { leave(); }
        Place(Place&& other) noexcept
            : m_registry(other.m_registry), m_connection(std::exchange(other.m_connection, nullptr))
        {
        }
        Place& operator=(Place&& other) noexcept;

        explicit operator bool() const { return m_connection != nullptr; }
        /// Passes to another phase; one thread at a time. False when that is `working` and no further calls
        /// are taken; the phase then stays.
        bool enter(ConnectionPhase phase) { return m_registry->enter(*m_connection, phase); }
        /// Whether a call is under way whose owner has been told that it takes too long.
        bool is_overdue() const;
        /// A request of it has been admitted.
        void set_known();
        /// Null takes the owner away. An owner must do that, or destroy the place, before it ends.
        void set_owner(ConnectionOwner* owner);

    private:
        friend class ConnectionRegistry;
        Place(ConnectionRegistry& registry, Connection& connection)
            : m_registry(&registry), m_connection(&connection)
        {
        }
        void leave() noexcept;

        ConnectionRegistry* m_registry = nullptr;
        Connection* m_connection = nullptr;
    };

    /// Starts the thread. Throws std::system_error.
    explicit ConnectionRegistry(ConnectionLimits limits);
    /// No place may be left.
    ~ConnectionRegistry();
    ConnectionRegistry(const ConnectionRegistry&) = delete;
    ConnectionRegistry& operator=(const ConnectionRegistry&) = delete;

    const ConnectionLimits& limits() const { return m_limits; }

    /// Takes a connection in, idle; an empty place when there is no room. `needs_token` tells that it may
    /// stay a stranger for a short time only.
    Place admit(int socket, const sockaddr& address, bool needs_token);

    /// How many there are now.
    std::size_t count();

    /// Takes no further calls.
    void close();
    /// Waits until no connection is in that phase; false when the deadline passes first.
    bool wait_none(ConnectionPhase phase, std::chrono::steady_clock::time_point deadline);

private:
    using Clock = std::chrono::steady_clock;

    bool enter(Connection& connection, ConnectionPhase phase);
    bool enter_after_close(Connection& connection, ConnectionPhase before, ConnectionPhase phase);
    Clock::time_point deadline_of(const Connection& connection, ConnectionPhase phase) const;
    bool has_room(const std::string& address) const;
    bool make_room(const std::string& newcomer);
    std::size_t connections_of(const std::string& address) const;
    void cut(Connection& connection);
    void uncount(Connection& connection);
    void remove(Connection& connection);
    void watch();
    Clock::time_point end_overdue();

    const ConnectionLimits m_limits;
    std::mutex m_mutex;
    std::condition_variable m_watch_changed; ///< the first connection came, or m_stopping
    std::condition_variable m_phase_left;
    std::list<Connection> m_connections; ///< guarded by m_mutex
    /// Of those that have not been cut; a Unix socket's have an empty address. Guarded by m_mutex.
    std::unordered_map<std::string, std::size_t> m_per_address;
    std::size_t m_over_tcp = 0; ///< of those that have not been cut; guarded by m_mutex
    std::atomic<bool> m_closed{false};
    bool m_stopping = false; ///< guarded by m_mutex
    std::thread m_watcher;
};

} // namespace zorbd

#endif
