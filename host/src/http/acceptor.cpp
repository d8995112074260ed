// SPDX-License-Identifier: Apache-2.0
#include "http/acceptor.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <exception>
#include <system_error>
#include <utility>

#include "jsonrpc/rpc_error.h"

namespace zorbd {
namespace {

/// How long a client that was turned away may take to read why, and how many of them are waited for.
constexpr std::chrono::seconds last_words{1};
constexpr std::size_t most_turned_away = 32;
/// When no file can be opened, how long to wait until one may have been closed.
constexpr int out_of_files_ms = 100;

FileDescriptor make_event()
{
    FileDescriptor event(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    if (event.get() < 0)
        throw std::system_error(errno, std::generic_category(), "cannot accept connections");
    return event;
}

const std::string& no_room_answer()
{
    static const std::string answer = [] {
        const HttpResponse response{503,
                                    error_response({RpcErrorCode::busy, "there are too many connections"})};
        std::string text;
        append_response_head(text, response, RequestHead(), false);
        return text + response.body;
    }();
    return answer;
}

/// Throws away what has come. False at the end.
bool discard_input(int socket)
{
    std::array<char, 4096> buffer{};
    ssize_t size = 0;
    do
        size = recv(socket, buffer.data(), buffer.size(), 0);
    while (size > 0);
    return size < 0 && (errno == EAGAIN || errno == EINTR);
}

} // namespace

Acceptor::Acceptor(std::vector<Listener> listeners, ConnectionRegistry& registry, Metrics& metrics)
    : m_listeners(std::move(listeners)), m_registry(registry), m_metrics(metrics), m_stop(make_event()),
      m_thread([this] { run(); })
{
}

Acceptor::~Acceptor()
{
    eventfd_write(m_stop.get(), 1);
    m_thread.join();
}

void Acceptor::run()
{
    while (await()) {
        m_is_out_of_files = false;
        for (Listener& listener : m_listeners)
            while (accept_from(listener)) {
            }
        close_turned_away();
    }
}

/// Waits for something to do; false when all is to stop.
bool Acceptor::await()
{
    constexpr int look_again_ms = 50;
    std::vector<pollfd> awaited{{m_stop.get(), POLLIN, 0}};
    if (!m_is_out_of_files)
        for (const Listener& listener : m_listeners)
            awaited.push_back({listener.socket, POLLIN, 0});
    const int timeout = m_is_out_of_files ? out_of_files_ms : m_turned_away.empty() ? -1 : look_again_ms;
    poll(awaited.data(), awaited.size(), timeout);
    return awaited.front().revents == 0;
}

/// False when there is none now.
bool Acceptor::accept_from(Listener& listener)
{
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    auto& address = reinterpret_cast<sockaddr&>(storage);
    FileDescriptor socket(accept4(listener.socket, &address, &length, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.get() < 0) {
        m_is_out_of_files |= errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
        return errno == EINTR || errno == ECONNABORTED;
    }
    try {
        auto place = m_registry.admit(socket.get(), address, listener.needs_token);
        if (place)
            admit(listener, std::move(socket), std::move(place));
        else
            turn_away(listener, std::move(socket));
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): no memory for it, so it is closed
    }
    return true;
}

void Acceptor::admit(Listener& listener, FileDescriptor socket, ConnectionRegistry::Place place)
{
    auto transport = listener.make_transport(std::move(socket));
    HttpServer& server = *listener.servers[m_turn++ % listener.servers.size()];
    server.take_in(std::move(transport), std::move(place));
}

/// The answer goes out before the request is read, which is thrown away: to close a socket with something
/// unread in it would take the answer away from the client.
void Acceptor::turn_away(const Listener& listener, FileDescriptor socket)
{
    m_metrics.count_turned_away();
    if (!listener.is_plain)
        return;
    const std::string& answer = no_room_answer();
    send(socket.get(), answer.data(), answer.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    shutdown(socket.get(), SHUT_WR);
    if (m_turned_away.size() == most_turned_away)
        m_turned_away.pop_front();
    m_turned_away.push_back({std::move(socket), Clock::now() + last_words});
}

void Acceptor::close_turned_away()
{
    const Clock::time_point now = Clock::now();
    m_turned_away.remove_if(
        [now](const TurnedAway& one) { return one.until <= now || !discard_input(one.socket.get()); });
}

} // namespace zorbd
