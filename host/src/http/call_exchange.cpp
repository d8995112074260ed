// SPDX-License-Identifier: Apache-2.0
#include "http/call_exchange.h"

#include <exception>
#include <utility>

#include "http/http_connection.h"
#include "http/io_threads.h"
#include "http/peer_text.h"

namespace zorbd {

CallExchange::CallExchange(const CallServices& services, IoThreads& threads, DoneCalls& done,
                           HttpConnection& connection, std::string body, std::shared_ptr<const Token> token)
    : asks(&connection), m_services(services), m_threads(threads), m_done(done), m_body(std::move(body)),
      m_peer(services.log.needs_peer() ? peer_text(connection.socket()) : std::string()),
      m_token(std::move(token))
{
}

bool CallExchange::run(bool may_wait)
{
    const auto begin = IoThreads::Clock::now();
    m_may_wait = may_wait;
    {
        const std::lock_guard<std::mutex> lock(m_mutex); // whoever let it wait is done with it after this
        m_place_at = std::exchange(m_waits_at, nullptr);
    }
    try {
        answer = m_services.dispatcher.answer(m_body, this);
    } catch (const CallWaits&) {
        return false; // it may be running elsewhere by now
    } catch (const std::exception& error) {
        answer = error_response({RpcErrorCode::internal_error, error.what()});
    }
    if (m_place_at != nullptr)
        m_place_at->leave(); // it was given up, or something else has kept it from its call
    was_refused = m_refused > 0 && m_not_refused == 0;
    m_threads.worked(IoThreads::Clock::now() - begin);
    return true;
}

void CallExchange::deliver()
{
    m_done.take_back(*this);
}

std::string CallExchange::refusal_of(std::string_view method) const
{
    if (m_token == nullptr || method == "rpc.discover" || m_token->allows(method))
        return {};
    return std::string(method) + ": the token '" + m_token->name + "' does not allow this method";
}

CallObserver::Start CallExchange::call_starts(const std::string& plugin)
{
    PluginLoad& load = m_services.loads.of(plugin);
    const std::lock_guard<std::mutex> lock(m_mutex); // it is given up before all of this, or after it
    if (m_is_given_up)
        return Start::given_up;
    switch (enter(load)) {
    case PluginLoad::Entry::waits:
        return Start::waits;
    case PluginLoad::Entry::refused:
        return Start::refused;
    case PluginLoad::Entry::entered:
        break;
    }
    m_runs_at = &load;
    m_has_begun = true;
    return Start::runs;
}

/// An I/O thread does not wait, and neither does a batch of which a part has been run. The caller holds
/// m_mutex.
PluginLoad::Entry CallExchange::enter(PluginLoad& load)
{
    using Entry = PluginLoad::Entry;
    PluginLoad* const place_at = std::exchange(m_place_at, nullptr);
    if (place_at == &load)
        return Entry::entered;
    if (place_at != nullptr)
        place_at->leave(); // another plug-in offers the method by now
    if (!m_may_wait) {
        load.enter_anyway();
        return Entry::entered;
    }
    if (m_answered.answered() != 0)
        return load.try_enter() ? Entry::entered : Entry::refused;
    const Entry entry = load.enter(*this);
    m_waits_at = entry == Entry::waits ? &load : nullptr;
    return entry;
}

void CallExchange::call_returned() noexcept
{
    PluginLoad* load = nullptr;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        load = std::exchange(m_runs_at, nullptr);
        if (std::exchange(m_is_stuck, false))
            load->remove_stuck();
    }
    load->leave();
}

void CallExchange::call_ended(const CallRecord& call) noexcept
{
    ++(call.code == static_cast<int>(RpcErrorCode::refused) ? m_refused : m_not_refused);
    const std::string_view name = m_token == nullptr ? std::string_view() : m_token->name;
    m_services.log.add({m_peer, name, call.method, call.id, call.duration, call.code});
}

void CallExchange::answered(const std::optional<std::string>& response)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_answered.add(response);
    m_has_begun = false;
}

void CallExchange::take_place() noexcept
{
    m_services.workers.submit_reserved(*this);
}

std::optional<std::string> CallExchange::give_up(const std::string& why)
{
    BatchResponses answered_so_far;
    bool has_begun = false;
    bool has_waited = false;
    asks = nullptr;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_given_up = true;
        m_is_stuck = m_runs_at != nullptr;
        if (m_is_stuck)
            m_runs_at->add_stuck();
        answered_so_far = m_answered;
        has_begun = m_has_begun;
        has_waited = m_waits_at != nullptr && m_waits_at->forget(*this);
        if (has_waited)
            m_waits_at = nullptr;
    }
    if (has_waited)
        m_services.workers.submit_reserved(*this); // to end without a call; it comes back to this thread
    return m_services.dispatcher.answer_late(m_body, std::move(answered_so_far), why, has_begun);
}

} // namespace zorbd
