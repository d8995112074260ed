// SPDX-License-Identifier: Apache-2.0
#include "http/http_connection.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>
#include <variant>

#include "jsonrpc/rpc_error.h"

namespace zorbd {
namespace {

/// What one read takes in. It is the thread's own, because a connection keeps only what it cannot use yet.
std::array<char, 65536>& read_buffer()
{
    thread_local std::array<char, 65536> buffer;
    return buffer;
}

/// A text that is larger gives its memory back once it has been used.
constexpr std::size_t kept_capacity = 16384;

/// What a stream is read in, and what the kernel keeps for a client that does not read it.
constexpr std::size_t stream_piece = 8192;
constexpr int stream_buffer = 65536;

void empty(std::string& text)
{
    if (text.capacity() > kept_capacity)
        std::string().swap(text);
    else
        text.clear();
}

HttpResponse error_answer(unsigned status, RpcErrorCode code, const std::string& cause)
{
    return {status, error_response({code, cause})};
}

bool expects_continue(const RequestHead& head)
{
    const auto expected = head.field("Expect");
    return expected && head.minor_version > 0 && equal_ignoring_case(*expected, "100-continue");
}

} // namespace

HttpConnection::HttpConnection(ConnectionServices& services, std::unique_ptr<Transport> transport,
                               ConnectionRegistry::Place place)
    : m_services(services), m_transport(std::move(transport)), m_place(std::move(place))
{
    m_place.set_owner(this);
}

HttpConnection::~HttpConnection()
{
    if (m_place)
        m_place.set_owner(nullptr);
    if (m_call != nullptr)
        m_call->asks = nullptr;
}

HttpConnection::Fate HttpConnection::handle_events(std::uint32_t events)
{
    if ((events & (EPOLLERR | EPOLLHUP)) != 0)
        return Fate::ends; // nobody is there to be answered
    if ((events & EPOLLRDHUP) != 0)
        m_half_closed = true;
    if ((events & (EPOLLIN | EPOLLRDHUP)) != 0 ||
        ((events & EPOLLOUT) != 0 && m_transport->receive_waits_for_room()))
        m_may_read = true;
    return proceed();
}

HttpConnection::Fate HttpConnection::take_answer(std::optional<std::string> answer, bool was_refused)
{
    m_call = nullptr;
    if (was_refused)
        m_services.count_refusal(403);
    if (answer)
        respond({was_refused ? 403U : 200U, std::move(*answer)});
    else
        respond({was_refused ? 403U : 204U, {}});
    return proceed();
}

void HttpConnection::call_is_overdue() noexcept
{
    m_services.note_overdue();
}

HttpConnection::Fate HttpConnection::answer_overdue()
{
    if (m_stage != Stage::working || !m_place.is_overdue())
        return Fate::stays;
    return take_answer(m_services.give_up(*m_call), false);
}

/// As far as it goes without waiting.
HttpConnection::Fate HttpConnection::proceed()
{
    while (go_on()) {
    }
    return m_stage == Stage::over ? Fate::ends : Fate::stays;
}

/// One step; false when there is nothing to do now.
bool HttpConnection::go_on()
{
    switch (m_stage) {
    case Stage::reading:
        return read_some();
    case Stage::sending:
        return send_some();
    case Stage::streaming:
        return stream_some();
    case Stage::ending:
        discard_input();
        return false;
    default:
        return false;
    }
}

bool HttpConnection::read_some()
{
    if (!m_may_read)
        return false;
    auto& buffer = read_buffer();
    const ssize_t size = m_transport->receive(buffer.data(), buffer.size());
    if (size < 0 && errno == EINTR)
        return true;
    if (size < 0 && errno == EAGAIN) {
        m_may_read = false;
        return false;
    }
    if (size <= 0) {
        m_stage = Stage::over;
        return false;
    }
    const auto count = static_cast<std::size_t>(size);
    if (count < buffer.size() && !m_half_closed && m_transport->drains_by_short_read())
        m_may_read = false;
    if (m_unread.empty()) {
        take_in({buffer.data(), count});
    } else {
        m_unread.append(buffer.data(), count);
        take_in_unread();
    }
    return true;
}

void HttpConnection::take_in_unread()
{
    const std::string bytes = std::exchange(m_unread, {});
    take_in(bytes);
}

/// Goes on until more bytes are needed, or an answer is due.
void HttpConnection::take_in(std::string_view bytes)
{
    while (m_stage == Stage::reading && !bytes.empty()) {
        const RequestParser::State before = m_parser.state();
        bytes.remove_prefix(m_parser.feed(bytes));
        const RequestParser::State now = m_parser.state();
        if (now == RequestParser::State::failed)
            refuse({m_parser.status(), m_parser.cause()});
        else if (before == RequestParser::State::head && now != before)
            decide();
        else if (now == before)
            break;
        if (m_stage == Stage::reading && now == RequestParser::State::complete)
            complete();
    }
    m_unread.assign(bytes);
    if (m_stage == Stage::reading && m_parser.has_begun() && !std::exchange(m_waits, true))
        m_place.enter(ConnectionPhase::receiving);
}

void HttpConnection::decide()
{
    const RequestHead& head = m_parser.head();
    const auto decision = m_services.gate().check(head);
    if (const auto* refusal = std::get_if<Refusal>(&decision))
        return refuse(*refusal);
    m_route = std::get<Admission>(decision).route;
    m_token = std::get<Admission>(decision).token;
    m_parser.limit_body(m_services.gate().max_body());
    if (!m_route->is_public && !std::exchange(m_is_known, true))
        m_place.set_known();
    if (head.has_body && expects_continue(head))
        m_transport->send("HTTP/1.1 100 Continue\r\n\r\n", {}); // a client that does not get it goes on
}

void HttpConnection::complete()
{
    const auto& action = m_route->action;
    if (std::holds_alternative<TakesCalls>(action))
        submit();
    else if (const auto* make_answer = std::get_if<MakeAnswer>(&action))
        respond((*make_answer)(m_parser.head()));
    else
        open_stream(std::get<OpenStream>(action));
}

void HttpConnection::submit()
{
    if (!m_place.enter(ConnectionPhase::working))
        return refuse_busy("the server stops");
    m_call = m_services.start_call(*this, std::move(m_parser.body()), std::move(m_token));
    if (m_call == nullptr)
        return refuse_busy("too many calls are outstanding");
    m_stage = Stage::working;
}

void HttpConnection::open_stream(const OpenStream& stream)
{
    const RequestHead& head = m_parser.head();
    HttpResponse response{200, {}, stream.content_type};
    if (head.method == "HEAD")
        return respond(std::move(response));
    OpenedStream opened = stream.open(head, m_services.wake_of(*this));
    if (const auto* refusal = std::get_if<Refusal>(&opened))
        return refuse(*refusal);
    m_stream = std::move(std::get<std::unique_ptr<ResponseStream>>(opened));
    m_keeps_alive = false;
    append_stream_head(m_out_head, response, head);
    setsockopt(socket(), SOL_SOCKET, SO_SNDBUF, &stream_buffer, sizeof stream_buffer);
    m_waits = true;
    m_place.enter(ConnectionPhase::listening);
    m_stage = Stage::sending;
}

/// Takes the next piece of the stream, or sees the client leave. False when there is none now.
bool HttpConnection::stream_some()
{
    auto& buffer = read_buffer();
    if (m_may_read) {
        discard_input();
        m_may_read = false;
        if (m_stage == Stage::over)
            return false;
    }
    std::size_t size = stream_piece;
    switch (m_stream->read(buffer.data(), size)) {
    case ResponseStream::State::text:
        append_stream_piece(m_out_body, m_parser.head(), {buffer.data(), size});
        break;
    case ResponseStream::State::ended:
        m_stream.reset();
        append_stream_end(m_out_body, m_parser.head());
        break;
    case ResponseStream::State::nothing_yet:
        return !m_stream->sleep();
    }
    m_stage = Stage::sending;
    return true;
}

void HttpConnection::refuse(const Refusal& refusal)
{
    m_services.count_refusal(refusal.status);
    HttpResponse response = error_answer(refusal.status, RpcErrorCode::refused, refusal.cause);
    if (!refusal.allowed_methods.empty())
        response.fields = "Allow: " + refusal.allowed_methods + "\r\n";
    respond(std::move(response));
}

void HttpConnection::refuse_busy(const char* cause)
{
    m_services.count_refusal(503);
    respond(error_answer(503, RpcErrorCode::busy, cause));
}

void HttpConnection::respond(HttpResponse response)
{
    const RequestHead& head = m_parser.head();
    m_keeps_alive = m_parser.state() == RequestParser::State::complete && head.keep_alive && m_is_known;
    append_response_head(m_out_head, response, head, m_keeps_alive);
    if (head.method != "HEAD")
        m_out_body = std::move(response.body);
    m_stage = Stage::sending;
    m_waits = false;
}

/// False when the client must take something first, or has gone.
bool HttpConnection::send_some()
{
    std::string_view head = m_out_head;
    std::string_view body = m_out_body;
    const std::size_t of_head = std::min(m_sent, head.size());
    head.remove_prefix(of_head);
    body.remove_prefix(m_sent - of_head);
    const ssize_t size = m_transport->send(head, body);
    if (size < 0 && errno == EINTR)
        return true;
    if (size < 0 && errno == EAGAIN) {
        if (!std::exchange(m_waits, true))
            m_place.enter(ConnectionPhase::sending);
        return false;
    }
    if (size < 0) {
        m_stage = Stage::over;
        return false;
    }
    m_sent += static_cast<std::size_t>(size);
    if (m_sent == m_out_head.size() + m_out_body.size())
        finish_sending();
    return true;
}

void HttpConnection::finish_sending()
{
    m_sent = 0;
    empty(m_out_head);
    empty(m_out_body);
    if (m_stream == nullptr)
        return finish_response();
    m_place.enter(ConnectionPhase::listening);
    m_stage = Stage::streaming;
}

void HttpConnection::finish_response()
{
    if (!m_keeps_alive)
        return end();
    m_parser.reset();
    m_route = nullptr;
    m_waits = false;
    m_stage = Stage::reading;
    m_place.enter(ConnectionPhase::idle);
    if (!m_unread.empty())
        take_in_unread();
}

/// To close a socket that something unread lies in would take the answer away from the client.
void HttpConnection::end()
{
    m_stage = Stage::over;
    if (m_parser.state() == RequestParser::State::complete && m_unread.empty())
        return;
    m_stage = Stage::ending;
    m_may_read = true;
    m_place.enter(ConnectionPhase::ending);
    m_transport->end_sending();
}

void HttpConnection::discard_input()
{
    constexpr std::size_t most = 1U << 24U;
    auto& buffer = read_buffer();
    for (std::size_t discarded = 0; discarded < most;) {
        const ssize_t size = m_transport->receive(buffer.data(), buffer.size());
        if (size < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        if (size <= 0)
            break;
        discarded += static_cast<std::size_t>(size);
    }
    m_stage = Stage::over;
}

} // namespace zorbd
