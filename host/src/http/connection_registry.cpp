// SPDX-License-Identifier: Apache-2.0
#include "http/connection_registry.h"

#include <netinet/in.h>

#include <algorithm>

namespace zorbd {
namespace {

std::string bytes_of(const void* data, std::size_t size)
{
    return {static_cast<const char*>(data), size};
}

/// What connections are counted by; empty where there is no address.
std::string address_key(const sockaddr* address)
{
    if (address == nullptr)
        return {};
    if (address->sa_family == AF_INET) {
        const auto& in = reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
        return bytes_of(&in, sizeof in);
    }
    if (address->sa_family == AF_INET6) {
        const auto& in6 = reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
        return bytes_of(&in6, sizeof in6);
    }
    return {};
}

/// Ends a connection. The socket cannot have been closed yet: its owner removes the connection first.
void cut(int socket, ConnectionPhase phase)
{
    if (phase == ConnectionPhase::sending ||
        phase == ConnectionPhase::listening) { // the kernel would keep what the client does not take
        const linger discard{1, 0};
        setsockopt(socket, SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
    }
    shutdown(socket, SHUT_RDWR);
}

} // namespace

/// A call changes the phase four times, so that takes no lock.
struct ConnectionRegistry::Connection
{
    Connection(int fd, std::string peer, Clock::time_point first_deadline)
        : socket(fd), address(std::move(peer)), deadline(first_deadline)
    {
    }

    const int socket;
    const std::string address;
    std::atomic<ConnectionPhase> phase{ConnectionPhase::idle};
    std::atomic<Clock::time_point> deadline;
    bool is_cut = false;                  ///< guarded by the registry's mutex
    std::list<Connection>::iterator self; ///< guarded by the registry's mutex
};

ConnectionRegistry::ConnectionRegistry(ConnectionLimits limits)
    : m_limits(limits), m_watcher([this] { watch(); })
{
}

ConnectionRegistry::~ConnectionRegistry()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_watch_changed.notify_all();
    m_watcher.join();
}

bool ConnectionRegistry::has_room(const sockaddr* address)
{
    const std::string key = address_key(address);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed || m_connections.size() >= m_limits.total)
        return false;
    const auto counted = m_per_address.find(key);
    return key.empty() || counted == m_per_address.end() || counted->second < m_limits.per_address;
}

std::size_t ConnectionRegistry::count()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections.size();
}

ConnectionRegistry::Connection& ConnectionRegistry::add(int socket, const sockaddr* address)
{
    const std::string key = address_key(address);
    const std::lock_guard<std::mutex> lock(m_mutex);
    Connection& added = m_connections.emplace_front(socket, key, deadline_of(ConnectionPhase::idle));
    added.self = m_connections.begin();
    ++m_per_address[key];
    if (m_connections.size() == 1)
        m_watch_changed.notify_all();
    return added;
}

void ConnectionRegistry::remove(Connection& connection)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto counted = m_per_address.find(connection.address);
    if (--counted->second == 0)
        m_per_address.erase(counted);
    m_connections.erase(connection.self);
    m_phase_left.notify_all();
}

bool ConnectionRegistry::enter(Connection& connection, ConnectionPhase phase)
{
    connection.deadline = deadline_of(phase);
    const ConnectionPhase before = connection.phase.exchange(phase);
    return !m_closed || enter_after_close(connection, before, phase);
}

/// Whoever enters either sees here that the registry is closed, or did so early enough for wait_none() to see
/// it.
bool ConnectionRegistry::enter_after_close(Connection& connection, ConnectionPhase before,
                                           ConnectionPhase phase)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool is_refused = phase == ConnectionPhase::working;
    if (is_refused) {
        connection.phase = before;
        connection.deadline = deadline_of(before);
    }
    m_phase_left.notify_all();
    return !is_refused;
}

void ConnectionRegistry::close()
{
    m_closed = true;
}

bool ConnectionRegistry::wait_none(ConnectionPhase phase, Clock::time_point deadline)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_phase_left.wait_until(lock, deadline, [this, phase] {
        return std::none_of(m_connections.begin(), m_connections.end(),
                            [phase](const Connection& connection) { return connection.phase == phase; });
    });
}

ConnectionRegistry::Clock::time_point ConnectionRegistry::deadline_of(ConnectionPhase phase) const
{
    switch (phase) {
    case ConnectionPhase::idle:
        return Clock::now() + m_limits.idle;
    case ConnectionPhase::working:
        return Clock::time_point::max(); // a call takes as long as it takes
    case ConnectionPhase::listening:
        return Clock::now() + m_limits.listening;
    default:
        return Clock::now() + m_limits.request;
    }
}

void ConnectionRegistry::watch()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        if (m_connections.empty())
            m_watch_changed.wait(lock);
        else
            m_watch_changed.wait_until(lock, cut_overdue());
    }
}

/// Shuts overdue connections down and says when to look again. No phase that begins later can end before
/// that.
ConnectionRegistry::Clock::time_point ConnectionRegistry::cut_overdue()
{
    const Clock::time_point now = Clock::now();
    Clock::time_point next = now + std::min({m_limits.idle, m_limits.request, m_limits.listening});
    for (Connection& connection : m_connections) {
        if (connection.is_cut)
            continue;
        const Clock::time_point deadline = connection.deadline;
        if (deadline <= now) {
            cut(connection.socket, connection.phase);
            connection.is_cut = true;
        } else {
            next = std::min(next, deadline);
        }
    }
    return next;
}

} // namespace zorbd
