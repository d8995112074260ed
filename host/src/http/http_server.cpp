// SPDX-License-Identifier: Apache-2.0
#include "http/http_server.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <array>
#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

#include "system/duration_text.h"

namespace zorbd {
namespace {

FileDescriptor opened(int descriptor)
{
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot start the HTTP server");
    return FileDescriptor(descriptor);
}

void add(int epoll, int socket, std::uint32_t events, void* closure)
{
    epoll_event event{};
    event.events = events;
    event.data.ptr = closure;
    if (epoll_ctl(epoll, EPOLL_CTL_ADD, socket, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot watch a socket");
}

std::unique_ptr<CallExchange> take_first(CallExchange*& list)
{
    std::unique_ptr<CallExchange> first(list);
    list = first->next;
    return first;
}

} // namespace

HttpServer::HttpServer(const RequestGate& gate, const HttpServices& services)
    : m_gate(gate), m_services(services), m_epoll(opened(epoll_create1(EPOLL_CLOEXEC))),
      m_wake_up(opened(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)))
{
    add(m_epoll.get(), m_wake_up.get(), EPOLLIN | EPOLLET, nullptr);
    m_threads.emplace(
        services.calls.workers, [this] { handle_events(); }, [this] { wake(); });
}

HttpServer::~HttpServer()
{
    m_threads.reset();
    m_connections.clear();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_call_ended.wait(lock, [this] { return m_calls == 0; });
    while (m_inbox.done != nullptr)
        take_first(m_inbox.done);
}

void HttpServer::take_in(std::unique_ptr<Transport> transport, ConnectionRegistry::Place place)
{
    auto connection = std::make_unique<HttpConnection>(*this, std::move(transport), std::move(place));
    put([&](Inbox& inbox) { inbox.connections.push_back(std::move(connection)); });
}

CallExchange* HttpServer::start_call(HttpConnection& connection, std::string body,
                                     std::shared_ptr<const Token> token)
{
    auto call = std::make_unique<CallExchange>(m_services.calls, *m_threads, *this, connection,
                                               std::move(body), std::move(token));
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_calls;
    }
    if (m_threads->submit(*call))
        return call.release(); // comes back through take_back()
    const std::lock_guard<std::mutex> lock(m_mutex);
    --m_calls;
    return nullptr;
}

void HttpServer::count_refusal(unsigned status) noexcept
{
    m_services.metrics.count_refusal(status);
}

/// A connection that has taken the place of one that is gone is woken for nothing, which does no harm.
std::function<void()> HttpServer::wake_of(const HttpConnection& connection)
{
    return [this, woken = &connection] { put([woken](Inbox& inbox) { inbox.woken.push_back(woken); }); };
}

std::optional<std::string> HttpServer::give_up(CallExchange& call)
{
    return call.give_up("no answer within " + seconds_text(m_services.call_timeout) + " s (--call-timeout)");
}

void HttpServer::note_overdue() noexcept
{
    put([](Inbox& inbox) { inbox.has_overdue = true; });
}

void HttpServer::take_back(CallExchange& done) noexcept
{
    put([&](Inbox& inbox) {
        done.next = std::exchange(inbox.done, &done);
        --m_calls;
        m_call_ended.notify_all(); // with the lock held: what waits for it may end all this
    });
}

/// Puts something into the inbox and sees to it that the leader looks.
template <class Put>
void HttpServer::put(const Put& put_in)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    put_in(m_inbox);
    if (m_leader_waits.exchange(false))
        wake();
}

void HttpServer::handle_events()
{
    empty_inbox();
    await_events();
}

void HttpServer::empty_inbox()
{
    for (;;) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_inbox.empty()) {
                m_leader_waits = true;
                return;
            }
            std::swap(m_inbox, m_handled);
        }
        handle(m_handled);
    }
}

void HttpServer::handle(Inbox& inbox)
{
    for (auto& connection : inbox.connections)
        serve(std::move(connection));
    inbox.connections.clear();
    while (inbox.done != nullptr) {
        const auto done = take_first(inbox.done);
        if (HttpConnection* asks = done->asks)
            advance(*asks, [&] { return asks->take_answer(std::move(done->answer), done->was_refused); });
    }
    for (const HttpConnection* woken : inbox.woken)
        if (const auto found = m_connections.find(woken); found != m_connections.end())
            advance(*found->second, [&] { return found->second->proceed(); });
    inbox.woken.clear();
    if (std::exchange(inbox.has_overdue, false))
        for (auto at = m_connections.begin(); at != m_connections.end();) {
            HttpConnection& connection = *(at++)->second;
            advance(connection, [&] { return connection.answer_overdue(); });
        }
}

void HttpServer::await_events()
{
    constexpr int at_once = 64;
    constexpr int for_ever = -1;
    std::array<epoll_event, at_once> events{};
    const int count = epoll_wait(m_epoll.get(), events.data(), at_once, m_threads->has_work() ? 0 : for_ever);
    m_leader_waits = false;
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = events[static_cast<std::size_t>(i)];
        if (event.data.ptr == nullptr)
            continue; // woken
        auto& connection = *static_cast<HttpConnection*>(event.data.ptr);
        advance(connection, [&] { return connection.handle_events(event.events); });
    }
}

/// A connection for which there is no memory is closed.
void HttpServer::serve(std::unique_ptr<HttpConnection> connection) noexcept
{
    constexpr std::uint32_t edges = EPOLLIN | EPOLLOUT | EPOLLRDHUP | EPOLLET;
    try {
        HttpConnection* served = connection.get();
        const auto at = m_connections.emplace(served, std::move(connection)).first;
        try {
            add(m_epoll.get(), served->socket(), edges, served);
        } catch (...) {
            m_connections.erase(at);
        }
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): it is closed by now
    }
}

/// Lets a connection do something; one that has ended, or has no memory to go on, is closed.
template <class Step>
void HttpServer::advance(HttpConnection& connection, const Step& step) noexcept
{
    auto fate = HttpConnection::Fate::ends;
    try {
        fate = step();
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): it is closed below
    }
    if (fate == HttpConnection::Fate::ends)
        m_connections.erase(&connection);
}

void HttpServer::wake() const
{
    eventfd_write(m_wake_up.get(), 1);
}

} // namespace zorbd
