// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HTTP_CONNECTION_H
#define ZORBD_HTTP_CONNECTION_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "http/call_exchange.h"
#include "http/connection_registry.h"
#include "http/http_message.h"
#include "http/request_gate.h"
#include "http/request_parser.h"
#include "http/response_stream.h"
#include "http/transport.h"

namespace zorbd {

/// What a connection does for its requests, done by its server.
class ConnectionServices
{
public:
    virtual ~ConnectionServices() = default;
    virtual const RequestGate& gate() const = 0;
    /// Starts a call; null when too many are outstanding.
    virtual CallExchange* start_call(HttpConnection& connection, std::string body,
                                     std::shared_ptr<const Token> token) = 0;
    /// Stops to wait for a call that takes too long, and gives the answer in its place.
    virtual std::optional<std::string> give_up(CallExchange& call) = 0;
    /// A request was not answered as it wanted to be.
    virtual void count_refusal(unsigned status) noexcept = 0;
    /// What makes the server call proceed() on a connection. It may be called on any thread, and when the
    /// connection is no more.
    virtual std::function<void()> wake_of(const HttpConnection& connection) = 0;
    /// A call takes too long: answer_overdue() is due. Any thread.
    virtual void note_overdue() noexcept = 0;
};

/// One client connection: reads requests, lets them be decided on and run, writes the answers in their order.
/// It is used by its server's I/O threads, one at a time.
class HttpConnection : public ConnectionOwner
{
public:
    /// What becomes of the connection after something has happened to it.
    enum class Fate { stays, ends };

    HttpConnection(ConnectionServices& services, std::unique_ptr<Transport> transport,
                   ConnectionRegistry::Place place);
    /// A call that still runs is left to end.
    ~HttpConnection() override;
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;

    int socket() const { return m_transport->socket(); }

    /// `events` are epoll's, as edges.
    Fate handle_events(std::uint32_t events);
    /// The call is done, or was refused.
    Fate take_answer(std::optional<std::string> answer, bool was_refused);
    /// As far as it goes without waiting; after a stream has asked for it.
    Fate proceed();
    /// Answers a call that takes too long, if there is one.
    Fate answer_overdue();

    void call_is_overdue() noexcept override;

private:
    enum class Stage { reading, working, sending, streaming, ending, over };

    bool read_some();
    void take_in(std::string_view bytes);
    void take_in_unread();
    bool go_on();
    void decide();
    void complete();
    void submit();
    void open_stream(const OpenStream& stream);
    bool stream_some();
    void refuse(const Refusal& refusal);
    void refuse_busy(const char* cause);
    void respond(HttpResponse response);
    bool send_some();
    void finish_sending();
    void finish_response();
    void end();
    void discard_input();

    ConnectionServices& m_services;
    std::unique_ptr<Transport> m_transport;
    ConnectionRegistry::Place m_place; ///< stands behind the transport, to be given up before it
    RequestParser m_parser;
    Stage m_stage = Stage::reading;
    bool m_may_read = true;               ///< there may be something to read, or the end
    bool m_half_closed = false;           ///< the client sends no more, though not all may have been read
    bool m_is_known = false;              ///< a request has been admitted
    bool m_waits = false;                 ///< the registry knows that a request, or an answer, takes its time
    bool m_keeps_alive = true;            ///< after this answer
    const Route* m_route = nullptr;       ///< of the request, once it has been admitted
    std::shared_ptr<const Token> m_token; ///< that it has shown, until its call begins
    CallExchange* m_call = nullptr;       ///< in Stage::working
    std::unique_ptr<ResponseStream> m_stream; ///< the answer's, until it has ended
    std::string m_unread;                     ///< has come, but has not been taken in
    std::string m_out_head;                   ///< what is being sent
    std::string m_out_body;
    std::size_t m_sent = 0; ///< of both
};

} // namespace zorbd

#endif
