// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CALL_EXCHANGE_H
#define ZORBD_CALL_EXCHANGE_H

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "events/call_log.h"
#include "http/token.h"
#include "http/worker_pool.h"
#include "jsonrpc/batch_responses.h"
#include "jsonrpc/dispatcher.h"
#include "plugins/plugin_load.h"

namespace zorbd {

class CallExchange;
class HttpConnection;
class IoThreads;

/// What calls need; all of it outlives them.
struct CallServices
{
    const Dispatcher& dispatcher;
    WorkerPool& workers;
    PluginLoads& loads;
    CallLog& log;
};

/// Takes a call back when it is done.
class DoneCalls
{
public:
    virtual ~DoneCalls() = default;
    /// Any thread. Whoever takes the exchange destroys it.
    virtual void take_back(CallExchange& done) noexcept = 0;
};

/// One body on its way to its answer. It belongs to the thread that works on it, but for what is said
/// otherwise.
class CallExchange : public Work, private CallObserver, private PluginLoad::Waiter
{
public:
    CallExchange(const CallServices& services, IoThreads& threads, DoneCalls& done,
                 HttpConnection& connection, std::string body, std::shared_ptr<const Token> token);

    bool run(bool may_wait) override;
    void deliver() override;

    /// Stops to wait for the call: one that has begun is left to end, and no further request of its body is
    /// run. Gives the answer as far as there is one, with an error that says `why` for the rest. For the I/O
    /// thread.
    std::optional<std::string> give_up(const std::string& why);

    /// Who waits for the answer; null when nobody does any more. The I/O threads' own.
    HttpConnection* asks;
    /// For whoever has taken it back, to make a list.
    CallExchange* next = nullptr;
    /// To be read when the exchange has been taken back; nothing when there is nothing to answer.
    std::optional<std::string> answer;
    /// The same: the caller's token allows none of the calls.
    bool was_refused = false;

private:
    std::string refusal_of(std::string_view method) const override;
    Start call_starts(const std::string& plugin) override;
    void call_returned() noexcept override;
    void call_ended(const CallRecord& call) noexcept override;
    void answered(const std::optional<std::string>& response) override;
    void take_place() noexcept override;
    PluginLoad::Entry enter(PluginLoad& load);

    const CallServices m_services;
    IoThreads& m_threads;
    DoneCalls& m_done;
    const std::string m_body;
    const std::string m_peer;                   ///< where that is needed
    const std::shared_ptr<const Token> m_token; ///< null where none is asked for
    unsigned m_refused = 0;                     ///< calls
    unsigned m_not_refused = 0;
    bool m_may_wait = false;
    PluginLoad* m_place_at = nullptr; ///< where it has got a place after it has waited
    std::mutex m_mutex;               ///< taken before that of a PluginLoad
    BatchResponses m_answered;        ///< so far; guarded by m_mutex
    PluginLoad* m_waits_at = nullptr; ///< guarded by m_mutex
    PluginLoad* m_runs_at = nullptr;  ///< guarded by m_mutex
    bool m_has_begun = false;         ///< a call that has not been answered; guarded by m_mutex
    bool m_is_given_up = false;       ///< guarded by m_mutex
    bool m_is_stuck = false;          ///< is counted as such at m_runs_at; guarded by m_mutex
};

} // namespace zorbd

#endif
