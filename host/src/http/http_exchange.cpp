// SPDX-License-Identifier: Apache-2.0
#include "http/http_exchange.h"

#include <microhttpd.h>

#include <memory>
#include <utility>

#include "http/console_page.h"
#include "http/event_stream.h"
#include "http/mhd_response.h"
#include "http/peer_text.h"

namespace zorbd {
namespace {

/// The header that a status calls for, besides the usual ones.
void add_status_header(MHD_Response* response, unsigned int status)
{
    if (status == MHD_HTTP_UNAUTHORIZED)
        MHD_add_response_header(response, MHD_HTTP_HEADER_WWW_AUTHENTICATE, "Bearer");
    else if (status == MHD_HTTP_SERVICE_UNAVAILABLE)
        MHD_add_response_header(response, MHD_HTTP_HEADER_RETRY_AFTER, "1");
}

Response make_response(const std::string& body, unsigned int status, const char* content_type)
{
    Response response = response_of(body);
    if (!body.empty())
        MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CONTENT_TYPE, content_type);
    add_status_header(response.get(), status);
    return response;
}

/// Tells of the calls of one request.
class ReportedCalls : public CallObserver
{
public:
    ReportedCalls(CallLog& log, std::string_view peer) : m_log(log), m_peer(peer) {}

    void call_ended(const CallRecord& call) noexcept override
    {
        m_log.add({m_peer, call.method, call.id, call.duration, call.code});
    }

private:
    CallLog& m_log;
    const std::string_view m_peer;
};

} // namespace

HttpExchange::HttpExchange(MHD_Connection& connection, ConnectionRegistry::Connection& registered,
                           const RequestGate& gate, const HttpServices& services, IoThreads& threads)
    : m_connection(connection), m_registered(registered), m_gate(gate), m_services(services),
      m_threads(threads)
{
}

void HttpExchange::begin(const RequestHead& head)
{
    const auto decision = m_gate.check(head);
    if (const auto* refusal = std::get_if<Refusal>(&decision))
        return refuse(*refusal);
    m_route = std::get<Route>(decision);
    m_head_only = head.method == "HEAD";
    m_console_file = find_console_file(head.path);
    if (m_route != Route::json_rpc)
        m_stage = Stage::page_asked;
    else if (m_services.calls.needs_peer())
        m_peer = peer_text(m_connection);
}

void HttpExchange::receive(const char* data, std::size_t size)
{
    if (size > m_gate.max_body() - m_body.size())
        m_stage = Stage::too_large;
    if (m_stage == Stage::receiving)
        m_body.append(data, size);
}

void HttpExchange::proceed()
{
    switch (m_stage) {
    case Stage::receiving:
        return submit();
    case Stage::submitted:
        return await_answer();
    case Stage::page_asked:
        return answer_page();
    case Stage::too_large:
        return refuse(m_gate.body_too_large());
    }
}

void HttpExchange::submit()
{
    if (!m_services.connections.enter(m_registered, ConnectionPhase::working))
        return refuse_busy("the server stops");
    m_stage = Stage::submitted;
    m_progress = Progress::running;
    if (m_threads.submit(*this))
        return; // a quick call is done before the library asks again
    m_progress = Progress::done;
    refuse_busy("too many calls are outstanding");
}

void HttpExchange::await_answer()
{
    if (m_progress == Progress::done)
        return respond_with_answer();
    MHD_suspend_connection(&m_connection);
    m_threads.sleeps();
    Progress running = Progress::running;
    if (!m_progress.compare_exchange_strong(running, Progress::waited_for))
        resume(m_threads, m_connection); // it was done just now
}

void HttpExchange::run()
{
    const auto begin = IoThreads::Clock::now();
    try {
        ReportedCalls reported(m_services.calls, m_peer);
        m_answer = m_services.dispatcher.answer(m_body, &reported);
    } catch (const std::exception& error) {
        m_answer = error_response({RpcErrorCode::internal_error, error.what()});
    }
    m_threads.worked(IoThreads::Clock::now() - begin);
}

void HttpExchange::deliver()
{
    IoThreads& threads = m_threads;
    MHD_Connection& connection = m_connection;
    switch (m_progress.exchange(Progress::done)) {
    case Progress::waited_for:
        return resume(threads, connection);
    case Progress::abandoned:
        std::unique_ptr<HttpExchange>(this).reset();
        return;
    default:
        return; // the I/O thread may have destroyed it by now
    }
}

void HttpExchange::release(std::unique_ptr<HttpExchange> exchange)
{
    Progress running = Progress::running;
    if (exchange != nullptr && exchange->m_progress.compare_exchange_strong(running, Progress::abandoned))
        static_cast<void>(exchange.release()); // deliver() destroys it
}

void HttpExchange::answer_page()
{
    switch (m_route) {
    case Route::events:
        return answer_events();
    case Route::metrics:
        return respond(MHD_HTTP_OK, m_services.metrics_page(), nullptr, "text/plain; version=0.0.4");
    case Route::console:
        return answer_with_console(m_connection, *m_console_file);
    default:
        return report_health();
    }
}

void HttpExchange::answer_events()
{
    const auto point = resume_point(m_connection);
    if (const auto* refusal = std::get_if<Refusal>(&point))
        return refuse(*refusal);
    if (m_head_only)
        return answer_with_event_head(m_connection);
    if (const auto refusal =
            answer_with_events(m_connection, m_services.events, std::get<std::optional<std::uint64_t>>(point),
                               m_threads, m_services.connections, m_registered))
        refuse(*refusal);
}

void HttpExchange::report_health()
{
    HealthReport report = m_services.health();
    respond(report.healthy ? MHD_HTTP_OK : MHD_HTTP_SERVICE_UNAVAILABLE, std::move(report.json));
}

void HttpExchange::refuse(const Refusal& refusal)
{
    m_services.metrics.count_refusal(refusal.status);
    respond(refusal.status, error_response({RpcErrorCode::refused, refusal.cause}), refusal.allowed_methods);
}

void HttpExchange::refuse_busy(const char* cause)
{
    m_services.metrics.count_refusal(MHD_HTTP_SERVICE_UNAVAILABLE);
    respond(MHD_HTTP_SERVICE_UNAVAILABLE, error_response({RpcErrorCode::busy, cause}));
}

void HttpExchange::respond_with_answer()
{
    if (m_answer)
        respond(MHD_HTTP_OK, std::move(*m_answer));
    else
        respond(MHD_HTTP_NO_CONTENT, {});
}

void HttpExchange::respond(unsigned int status, std::string body, const char* allowed_methods,
                           const char* content_type)
{
    m_services.connections.enter(m_registered, ConnectionPhase::sending);
    m_response = std::move(body);
    const Response response = make_response(m_response, status, content_type);
    if (allowed_methods != nullptr)
        MHD_add_response_header(response.get(), MHD_HTTP_HEADER_ALLOW, allowed_methods);
    queue_response(m_connection, status, response);
}

} // namespace zorbd
