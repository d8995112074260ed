// SPDX-License-Identifier: Apache-2.0
#include "http/call_exchange.h"

#include <exception>
#include <utility>

#include "http/http_connection.h"
#include "http/io_threads.h"
#include "http/peer_text.h"

namespace zorbd {
namespace {

/// Judges and tells of the calls of one request.
class JudgedCalls : public CallObserver
{
public:
    /// `token` may be null: then nothing is refused.
    JudgedCalls(CallLog& log, std::string_view peer, const Token* token)
        : m_log(log), m_peer(peer), m_token(token)
    {
    }

    std::string refusal_of(std::string_view method) const override
    {
        if (m_token == nullptr || method == "rpc.discover" || m_token->allows(method))
            return {};
        return std::string(method) + ": the token '" + m_token->name + "' does not allow this method";
    }

    void call_ended(const CallRecord& call) noexcept override
    {
        ++(call.code == static_cast<int>(RpcErrorCode::refused) ? m_refused : m_others);
        const std::string_view name = m_token == nullptr ? std::string_view() : m_token->name;
        m_log.add({m_peer, name, call.method, call.id, call.duration, call.code});
    }

    /// Whether each of them was outside the caller's rights.
    bool all_refused() const { return m_refused > 0 && m_others == 0; }

private:
    CallLog& m_log;
    const std::string_view m_peer;
    const Token* const m_token;
    unsigned m_refused = 0;
    unsigned m_others = 0;
};

} // namespace

CallExchange::CallExchange(const Dispatcher& dispatcher, CallLog& log, IoThreads& threads, DoneCalls& done,
                           HttpConnection& connection, std::string body, std::shared_ptr<const Token> token)
    : asks(&connection), m_dispatcher(dispatcher), m_log(log), m_threads(threads), m_done(done),
      m_body(std::move(body)), m_peer(log.needs_peer() ? peer_text(connection.socket()) : std::string()),
      m_token(std::move(token))
{
}

void CallExchange::run()
{
    const auto begin = IoThreads::Clock::now();
    try {
        JudgedCalls calls(m_log, m_peer, m_token.get());
        answer = m_dispatcher.answer(m_body, &calls);
        was_refused = calls.all_refused();
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
