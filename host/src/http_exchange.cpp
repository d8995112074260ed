// SPDX-License-Identifier: Apache-2.0
#include "http_exchange.h"

#include <microhttpd.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace zorbd {
namespace {

struct ResponseRelease
{
    void operator()(MHD_Response* response) const noexcept { MHD_destroy_response(response); }
};

using Response = std::unique_ptr<MHD_Response, ResponseRelease>;

/// The header that a status calls for, besides the usual ones.
void add_status_header(MHD_Response* response, unsigned int status)
{
    if (status == MHD_HTTP_UNAUTHORIZED)
        MHD_add_response_header(response, MHD_HTTP_HEADER_WWW_AUTHENTICATE, "Bearer");
    else if (status == MHD_HTTP_SERVICE_UNAVAILABLE)
        MHD_add_response_header(response, MHD_HTTP_HEADER_RETRY_AFTER, "1");
}

Response make_response(std::string& body, unsigned int status)
{
    Response response(MHD_create_response_from_buffer(body.size(), body.data(), MHD_RESPMEM_PERSISTENT));
    if (response == nullptr)
        throw std::bad_alloc();
    if (!body.empty())
        MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CONTENT_TYPE, "application/json");
    add_status_header(response.get(), status);
    return response;
}

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
    if (std::get<Route>(decision) == Route::health)
        m_stage = Stage::health_asked;
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
        return hand_over();
    case Stage::health_asked:
        return report_health();
    case Stage::too_large:
        return refuse(m_gate.body_too_large());
    case Stage::busy:
        return refuse_busy("too many calls are outstanding");
    case Stage::worked:
        return respond_with_answer();
    }
}

void HttpExchange::hand_over()
{
    if (!m_services.connections.enter(m_registered, ConnectionPhase::working))
        return refuse_busy("the server stops");
    MHD_suspend_connection(&m_connection); // first, because a worker may be done with it at once
    if (m_threads.submit(*this))
        return; // it is the worker's now
    m_stage = Stage::busy;
    MHD_resume_connection(&m_connection);
}

void HttpExchange::run()
{
    const auto begin = IoThreads::Clock::now();
    try {
        m_answer = m_services.dispatcher.answer(m_body);
    } catch (const std::exception& error) {
        m_answer = error_response({RpcErrorCode::internal_error, error.what()});
    }
    m_stage = Stage::worked;
    m_threads.worked(IoThreads::Clock::now() - begin);
}

void HttpExchange::deliver()
{
    m_threads.deliver([connection = &m_connection] { MHD_resume_connection(connection); });
}

void HttpExchange::report_health()
{
    HealthReport report = m_services.health();
    respond(report.healthy ? MHD_HTTP_OK : MHD_HTTP_SERVICE_UNAVAILABLE, std::move(report.json));
}

void HttpExchange::refuse(const Refusal& refusal)
{
    respond(refusal.status, error_response({RpcErrorCode::refused, refusal.cause}), refusal.allowed_methods);
}

void HttpExchange::refuse_busy(const char* cause)
{
    respond(MHD_HTTP_SERVICE_UNAVAILABLE, error_response({RpcErrorCode::busy, cause}));
}

void HttpExchange::respond_with_answer()
{
    if (m_answer)
        respond(MHD_HTTP_OK, std::move(*m_answer));
    else
        respond(MHD_HTTP_NO_CONTENT, {});
}

void HttpExchange::respond(unsigned int status, std::string body, const char* allowed_methods)
{
    m_services.connections.enter(m_registered, ConnectionPhase::sending);
    m_response = std::move(body);
    const Response response = make_response(m_response, status);
    if (allowed_methods != nullptr)
        MHD_add_response_header(response.get(), MHD_HTTP_HEADER_ALLOW, allowed_methods);
    if (MHD_queue_response(&m_connection, status, response.get()) != MHD_YES)
        throw std::runtime_error("the response cannot be queued");
}

} // namespace zorbd
