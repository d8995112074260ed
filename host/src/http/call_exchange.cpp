// SPDX-License-Identifier: Apache-2.0
#include "http/call_exchange.h"

#include <exception>
#include <utility>

#include "http/http_connection.h"
#include "http/io_threads.h"
#include "http/peer_text.h"

namespace zorbd {
namespace {

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

CallExchange::CallExchange(const Dispatcher& dispatcher, CallLog& log, IoThreads& threads, DoneCalls& done,
                           HttpConnection& connection, std::string body)
    : asks(&connection), m_dispatcher(dispatcher), m_log(log), m_threads(threads), m_done(done),
      m_body(std::move(body)), m_peer(log.needs_peer() ? peer_text(connection.socket()) : std::string())
{
}

void CallExchange::run()
{
    const auto begin = IoThreads::Clock::now();
    try {
        ReportedCalls reported(m_log, m_peer);
        answer = m_dispatcher.answer(m_body, &reported);
    } catch (const std::exception& error) {
        answer = error_response({RpcErrorCode::internal_error, error.what()});
    }
    m_threads.worked(IoThreads::Clock::now() - begin);
}

void CallExchange::deliver()
{
    m_done.take_back(*this);
}

} // namespace zorbd
