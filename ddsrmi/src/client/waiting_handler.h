// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_WAITING_HANDLER_H
#define DDSRMI_CLIENT_WAITING_HANDLER_H

#include <condition_variable>
#include <memory>
#include <mutex>

#include "client/outstanding_requests.h"

namespace org::opensplice::DDS_RMI {

/// How a request ended that a thread waits for.
class ReplyOutcome
{
public:
    enum class State { waiting, replied, given_up };

    /// Only the first call counts.
    void settle(State state);
    State wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_settled;
    State m_state = State::waiting; // guarded by m_mutex
};

/// Passes the reply on to another handler and tells the outcome; being released without a reply means that
/// the request was given up.
class WaitingHandler final : public CAsyncReplyHandlerImpl
{
public:
    WaitingHandler(const Handler& inner, std::shared_ptr<ReplyOutcome> outcome);
    ~WaitingHandler() override;

    void handleReply(DDS::ReadCondition* condition) override;

private:
    const Handler m_inner;
    const std::shared_ptr<ReplyOutcome> m_outcome;
};

} // namespace org::opensplice::DDS_RMI

#endif
