// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CALL_EXCHANGE_H
#define ZORBD_CALL_EXCHANGE_H

#include <memory>
#include <optional>
#include <string>

#include "events/call_log.h"
#include "http/token.h"
#include "http/worker_pool.h"
#include "jsonrpc/dispatcher.h"

namespace zorbd {

class CallExchange;
class HttpConnection;
class IoThreads;

/// Takes a call back when it is done.
class DoneCalls
{
public:
    virtual ~DoneCalls() = default;
    /// Any thread. Whoever takes the exchange destroys it.
    virtual void take_back(CallExchange& done) noexcept = 0;
};

/// One body on its way to its answer, while a thread works on it.
class CallExchange : public Work
{
public:
    CallExchange(const Dispatcher& dispatcher, CallLog& log, IoThreads& threads, DoneCalls& done,
                 HttpConnection& connection, std::string body, std::shared_ptr<const Token> token);

    void run() override;
    void deliver() override;

    /// Who waits for the answer; null when nobody does any more. The I/O threads' own.
    HttpConnection* asks;
    /// For whoever has taken it back, to make a list.
    CallExchange* next = nullptr;
    /// To be read when the exchange has been taken back; nothing when there is nothing to answer.
    std::optional<std::string> answer;
    /// The same: the caller's token allows none of the calls.
    bool was_refused = false;

private:
    const Dispatcher& m_dispatcher;
    CallLog& m_log;
    IoThreads& m_threads;
    DoneCalls& m_done;
    const std::string m_body;
    const std::string m_peer;                   ///< where that is needed
    const std::shared_ptr<const Token> m_token; ///< null where none is asked for
};

} // namespace zorbd

#endif
