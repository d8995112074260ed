// SPDX-License-Identifier: Apache-2.0
#include "client/waiting_handler.h"

#include <utility>

namespace org::opensplice::DDS_RMI {

void ReplyOutcome::settle(State state)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_state == State::waiting)
            m_state = state;
    }
    m_settled.notify_all();
}

ReplyOutcome::State ReplyOutcome::wait()
{
    std::unique_lock lock(m_mutex);
    m_settled.wait(lock, [this] { return m_state != State::waiting; });
    return m_state;
}

WaitingHandler::WaitingHandler(const Handler& inner, std::shared_ptr<ReplyOutcome> outcome)
    : m_inner(inner), m_outcome(std::move(outcome))
{
}

WaitingHandler::~WaitingHandler()
{
    m_outcome->settle(ReplyOutcome::State::given_up);
}

void WaitingHandler::handleReply(DDS::ReadCondition* condition)
{
    m_inner->handleReply(condition);
    m_outcome->settle(ReplyOutcome::State::replied);
}

} // namespace org::opensplice::DDS_RMI
