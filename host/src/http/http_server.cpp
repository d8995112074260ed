// SPDX-License-Identifier: Apache-2.0
#include "http/http_server.h"

#include <microhttpd.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "http/http_exchange.h"

namespace zorbd {
namespace {

/// What a connection may use for the head of a request and of its response.
constexpr std::size_t connection_memory = 8192;
/// Above our own limit, which is the one that is told of and enforced.
constexpr unsigned int connection_reserve = 16;
/// How long to wait in the library alone, where nothing but a client can end the wait.
constexpr int busy_wait_ms = 10;

std::optional<std::string_view> header(MHD_Connection* connection, const char* name)
{
    const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
    if (value == nullptr)
        return std::nullopt;
    return value;
}

RequestHead head_of(MHD_Connection* connection, const char* method, const char* path)
{
    return {method,
            path,
            header(connection, MHD_HTTP_HEADER_CONTENT_TYPE),
            header(connection, MHD_HTTP_HEADER_CONTENT_LENGTH),
            header(connection, MHD_HTTP_HEADER_ORIGIN),
            header(connection, MHD_HTTP_HEADER_AUTHORIZATION)};
}

ConnectionRegistry::Connection& registered(MHD_Connection* connection)
{
    const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    if (info->socket_context == nullptr)
        throw std::bad_alloc(); // there was no memory to register it
    return *static_cast<ConnectionRegistry::Connection*>(info->socket_context);
}

/// Runs what a callback has to do; no exception may pass through the library that calls it.
template <class Action>
MHD_Result guarded(const Action& action) noexcept
{
    try {
        action();
        return MHD_YES;
    } catch (...) {
        return MHD_NO; // closes the connection
    }
}

} // namespace

/// The functions that libmicrohttpd calls, on the server's thread. `closure` is the server.
struct HttpCallbacks
{
    static MHD_Result accept(void* closure, const sockaddr* address, socklen_t /*length*/)
    {
        ConnectionRegistry& connections = server(closure).m_services.connections;
        bool has_room = false;
        guarded([&] { has_room = connections.has_room(address); });
        if (!has_room)
            server(closure).m_services.metrics.count_turned_away();
        return has_room ? MHD_YES : MHD_NO;
    }

    static void connection_changed(void* closure, MHD_Connection* connection, void** context,
                                   MHD_ConnectionNotificationCode change)
    {
        ConnectionRegistry& connections = server(closure).m_services.connections;
        if (change == MHD_CONNECTION_NOTIFY_STARTED)
            guarded([&] { *context = &add(connections, connection); });
        else if (*context != nullptr)
            connections.remove(*static_cast<ConnectionRegistry::Connection*>(*context));
    }

    /// Is called when the first line of a request has come in.
    static void* request_line_read(void* closure, const char* /*uri*/, MHD_Connection* connection)
    {
        guarded([&] { enter(closure, connection, ConnectionPhase::receiving); });
        return nullptr;
    }

    static MHD_Result handle(void* closure, MHD_Connection* connection, const char* path, const char* method,
                             const char* /*version*/, const char* data, std::size_t* size, void** context)
    {
        server(closure).m_is_busy = true;
        return guarded([&] {
            auto* exchange = static_cast<HttpExchange*>(*context);
            if (exchange == nullptr) {
                *context = exchange = make_exchange(server(closure), connection);
                exchange->begin(head_of(connection, method, path));
            } else if (*size != 0) {
                exchange->receive(data, std::exchange(*size, 0));
            } else {
                exchange->proceed();
            }
        });
    }

    static void completed(void* closure, MHD_Connection* connection, void** context,
                          MHD_RequestTerminationCode /*how*/)
    {
        server(closure).m_is_busy = true;
        HttpExchange::release(
            std::unique_ptr<HttpExchange>(static_cast<HttpExchange*>(std::exchange(*context, nullptr))));
        guarded([&] { enter(closure, connection, ConnectionPhase::idle); });
    }

private:
    static HttpServer& server(void* closure) { return *static_cast<HttpServer*>(closure); }

    static void enter(void* closure, MHD_Connection* connection, ConnectionPhase phase)
    {
        server(closure).m_services.connections.enter(registered(connection), phase);
    }

    static ConnectionRegistry::Connection& add(ConnectionRegistry& connections, MHD_Connection* connection)
    {
        const int socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
        const sockaddr* address =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS)->client_addr;
        return connections.add(socket, address);
    }

    static HttpExchange* make_exchange(HttpServer& server, MHD_Connection* connection)
    {
        return new HttpExchange(*connection, registered(connection), server.m_gate, server.m_services,
                                *server.m_threads);
    }
};

HttpServer::HttpServer(int listening_socket, RequestGate gate, const HttpServices& services)
    : m_gate(std::move(gate)), m_services(services),
      m_daemon(MHD_start_daemon(
          MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, &HttpCallbacks::accept, this, &HttpCallbacks::handle,
          this, MHD_OPTION_LISTEN_SOCKET, listening_socket, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
          connection_memory, MHD_OPTION_CONNECTION_LIMIT,
          static_cast<unsigned int>(services.connections.limits().total) + connection_reserve,
          MHD_OPTION_STRICT_FOR_CLIENT, 1, MHD_OPTION_SIGPIPE_HANDLED_BY_APP, 1, MHD_OPTION_URI_LOG_CALLBACK,
          &HttpCallbacks::request_line_read, this, MHD_OPTION_NOTIFY_CONNECTION,
          &HttpCallbacks::connection_changed, this, MHD_OPTION_NOTIFY_COMPLETED, &HttpCallbacks::completed,
          this, MHD_OPTION_END)),
      m_wake_up(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
    if (m_daemon == nullptr)
        throw std::system_error(errno, std::generic_category(), "cannot start the HTTP server");
    if (m_wake_up.get() < 0)
        throw std::system_error(errno, std::generic_category(), "cannot start the HTTP server");
    m_threads.emplace(
        services.workers, [this](bool may_be_woken) { handle_events(may_be_woken); }, [this] { wake(); });
}

HttpServer::~HttpServer()
{
    m_threads.reset();
    quiesce(); // otherwise the daemon closes the socket, which is not its own
}

/// To wait in the library takes one system call a round instead of two, but only for a client. That is good
/// enough for a short time, which under load is hardly ever used up.
void HttpServer::handle_events(bool may_be_woken)
{
    if (std::exchange(m_is_busy, false) && !may_be_woken) {
        MHD_run_wait(m_daemon.get(), busy_wait_ms);
    } else {
        await_events();
        MHD_run(m_daemon.get());
    }
}

/// Waits for clients and for wake().
void HttpServer::await_events() const
{
    const int clients = MHD_get_daemon_info(m_daemon.get(), MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
    pollfd awaited[] = {{clients, POLLIN, 0}, {m_wake_up.get(), POLLIN, 0}};
    MHD_UNSIGNED_LONG_LONG limit = 0;
    const bool is_limited = MHD_get_timeout(m_daemon.get(), &limit) == MHD_YES;
    poll(awaited, std::size(awaited),
         is_limited ? static_cast<int>(std::min<MHD_UNSIGNED_LONG_LONG>(limit, INT_MAX)) : -1);
    eventfd_t woken = 0;
    if (awaited[1].revents != 0)
        eventfd_read(m_wake_up.get(), &woken);
}

void HttpServer::wake() const
{
    eventfd_write(m_wake_up.get(), 1);
}

void HttpServer::quiesce()
{
    const int socket = MHD_quiesce_daemon(m_daemon.get());
    if (socket != MHD_INVALID_SOCKET)
        shutdown(socket, SHUT_RDWR); // refuses connections at once, while the descriptor stays valid
}

void HttpServer::Stop::operator()(MHD_Daemon* daemon) const noexcept
{
    MHD_stop_daemon(daemon);
}

} // namespace zorbd
