// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_WAITING_HANDLER_H
#define DDSRMI_CLIENT_WAITING_HANDLER_H

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "client/outstanding_requests.h"
#include "ddsrmi/call_failure.h"

namespace org::opensplice::DDS_RMI {

/// How a call ends that a thread waits for.
class CallOutcome
{
public:
    void reply();
    void fail(CallFailure reason, const char* text);
    void fail(const std::exception_ptr& exception);
    /// Throws the exception that says why there is no result.
    void wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_settled;
    bool m_replied = false;               // guarded by m_mutex
    std::optional<CallFailure> m_failure; // guarded by m_mutex
    std::string m_text;                   // guarded by m_mutex
    std::exception_ptr m_exception;       // guarded by m_mutex
};

/// Passes the reply on to another handler and tells the outcome.
class WaitingHandler final : public CAsyncReplyHandlerImpl, public CallFailureHandler
{
public:
    WaitingHandler(const Handler& inner, std::shared_ptr<CallOutcome> outcome);
    ~WaitingHandler() override;

    void handleReply(DDS::ReadCondition* condition) override;
    void handleFailure(CallFailure reason, const char* text) override;

private:
    const Handler m_inner;
    const std::shared_ptr<CallOutcome> m_outcome;
};

} // namespace org::opensplice::DDS_RMI

#endif
