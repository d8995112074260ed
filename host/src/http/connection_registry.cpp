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

/// What connections are counted by; empty for a Unix socket. One who has an IPv6 network has all its
/// addresses, so the network counts.
std::string address_key(const sockaddr& address)
{
    constexpr std::size_t network_size = 8;
    constexpr std::size_t mapped_offset = 12; // of an IPv4 address within an IPv6 one
    if (address.sa_family == AF_INET)
        return bytes_of(&reinterpret_cast<const sockaddr_in&>(address).sin_addr, sizeof(in_addr));
    if (address.sa_family != AF_INET6)
        return {};
    const in6_addr& in6 = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    if (IN6_IS_ADDR_V4MAPPED(&in6))
        return bytes_of(in6.s6_addr + mapped_offset, sizeof(in_addr));
    return bytes_of(in6.s6_addr, network_size);
}

/// Ends a connection. The socket cannot have been closed yet: its owner gives the place up first.
void shut_down(int socket, ConnectionPhase phase)
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
    Connection(int fd, std::string peer, Clock::time_point token_until)
        : socket(fd), address(std::move(peer)), token_deadline(token_until)
    {
    }

    bool is_over_tcp() const { return !address.empty(); }

    /// Takes a deadline away, which has passed. False when another phase has begun; `passed` is its deadline
    /// then.
    bool take_deadline(Clock::time_point& passed)
    {
        return deadline.compare_exchange_strong(passed, Clock::time_point::max());
    }

    const int socket;
    const std::string address;
    const Clock::time_point token_deadline;
    std::atomic<bool> is_known{false};
    std::atomic<ConnectionPhase> phase{ConnectionPhase::idle};
    std::atomic<Clock::time_point> deadline{};
    ConnectionOwner* owner = nullptr;     ///< guarded by the registry's mutex
    bool is_cut = false;                  ///< guarded by the registry's mutex
    std::list<Connection>::iterator self; ///< guarded by the registry's mutex
};

ConnectionRegistry::Place& ConnectionRegistry::Place::operator=(Place&& other) noexcept
{
    leave();
    m_registry = other.m_registry;
    m_connection = std::exchange(other.m_connection, nullptr);
    return *this;
}

void ConnectionRegistry::Place::leave() noexcept
{
    if (Connection* left = std::exchange(m_connection, nullptr))
        m_registry->remove(*left);
}

bool ConnectionRegistry::Place::is_overdue() const
{
    return m_registry->m_limits.call.count() != 0 && m_connection->phase == ConnectionPhase::working &&
           m_connection->deadline.load() == Clock::time_point::max();
}

void ConnectionRegistry::Place::set_known()
{
    m_connection->is_known = true;
}

void ConnectionRegistry::Place::set_owner(ConnectionOwner* owner)
{
    const std::lock_guard<std::mutex> lock(m_registry->m_mutex);
    m_connection->owner = owner;
}

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

ConnectionRegistry::Place ConnectionRegistry::admit(int socket, const sockaddr& address, bool needs_token)
{
    const Clock::time_point token_until =
        needs_token ? Clock::now() + m_limits.token : Clock::time_point::max();
    const std::string key = address_key(address);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed || (!has_room(key) && !make_room(key)))
        return {};
    Connection& added = m_connections.emplace_front(socket, key, token_until);
    added.self = m_connections.begin();
    added.deadline = deadline_of(added, ConnectionPhase::idle);
    ++m_per_address[key];
    if (added.is_over_tcp())
        ++m_over_tcp;
    if (m_connections.size() == 1)
        m_watch_changed.notify_all();
    return {*this, added};
}

std::size_t ConnectionRegistry::count()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections.size();
}

/// The caller holds m_mutex.
std::size_t ConnectionRegistry::connections_of(const std::string& address) const
{
    const auto counted = m_per_address.find(address);
    return counted == m_per_address.end() ? 0 : counted->second;
}

/// The caller holds m_mutex.
bool ConnectionRegistry::has_room(const std::string& address) const
{
    if (address.empty())
        return connections_of(address) < m_limits.unix_total;
    return m_over_tcp < m_limits.total && connections_of(address) < m_limits.per_address;
}

/// Cuts a stranger for a newcomer whose address has less than that stranger's. The caller holds m_mutex.
bool ConnectionRegistry::make_room(const std::string& newcomer)
{
    const std::size_t own = connections_of(newcomer);
    if (newcomer.empty() || own >= m_limits.per_address)
        return false;
    Connection* victim = nullptr;
    std::size_t most = own + 1;
    for (Connection& connection : m_connections) { // the last found is the oldest
        const std::size_t count = connections_of(connection.address);
        if (connection.is_cut || connection.is_known || !connection.is_over_tcp() || count < most)
            continue;
        victim = &connection;
        most = count;
    }
    if (victim == nullptr)
        return false;
    cut(*victim);
    return true;
}

/// The caller holds m_mutex.
void ConnectionRegistry::cut(Connection& connection)
{
    uncount(connection);
    connection.is_cut = true;
    shut_down(connection.socket, connection.phase);
}

/// The caller holds m_mutex.
void ConnectionRegistry::uncount(Connection& connection)
{
    if (connection.is_cut)
        return;
    const auto counted = m_per_address.find(connection.address);
    if (--counted->second == 0)
        m_per_address.erase(counted);
    if (connection.is_over_tcp())
        --m_over_tcp;
}

void ConnectionRegistry::remove(Connection& connection)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    uncount(connection);
    m_connections.erase(connection.self);
    m_phase_left.notify_all();
}

bool ConnectionRegistry::enter(Connection& connection, ConnectionPhase phase)
{
    connection.deadline = deadline_of(connection, phase);
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
        connection.deadline = deadline_of(connection, before);
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

ConnectionRegistry::Clock::time_point ConnectionRegistry::deadline_of(const Connection& connection,
                                                                      ConnectionPhase phase) const
{
    constexpr std::chrono::seconds last_words{2};
    const auto at_most = [&connection](Clock::time_point deadline) {
        return connection.is_known ? deadline : std::min(deadline, connection.token_deadline);
    };
    switch (phase) {
    case ConnectionPhase::idle:
        return at_most(Clock::now() + m_limits.idle);
    case ConnectionPhase::working:
        return m_limits.call.count() == 0 ? Clock::time_point::max() : Clock::now() + m_limits.call;
    case ConnectionPhase::listening:
        return Clock::now() + m_limits.listening;
    case ConnectionPhase::ending:
        return Clock::now() + last_words;
    default:
        return at_most(Clock::now() + m_limits.request);
    }
}

void ConnectionRegistry::watch()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        if (m_connections.empty())
            m_watch_changed.wait(lock);
        else
            m_watch_changed.wait_until(lock, end_overdue());
    }
}

/// Ends what is overdue and says when to look again. No phase that begins later can end before that.
ConnectionRegistry::Clock::time_point ConnectionRegistry::end_overdue()
{
    const Clock::time_point now = Clock::now();
    Clock::time_point next =
        now + std::min({m_limits.idle, m_limits.request, m_limits.token, m_limits.listening});
    if (m_limits.call.count() != 0)
        next = std::min(next, now + m_limits.call);
    for (Connection& connection : m_connections) {
        if (connection.is_cut)
            continue;
        Clock::time_point deadline = connection.deadline;
        if (deadline > now || !connection.take_deadline(deadline)) {
            next = std::min(next, deadline);
        } else if (connection.phase != ConnectionPhase::working) {
            cut(connection);
        } else if (connection.owner != nullptr) {
            connection.owner->call_is_overdue();
        }
    }
    return next;
}

} // namespace zorbd
