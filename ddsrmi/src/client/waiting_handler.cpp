// SPDX-License-Identifier: Apache-2.0
#include "client/waiting_handler.h"

#include <utility>

#include "ddsrmi/encoding.h"
#include "ddsrmi/exceptions.h"

namespace org::opensplice::DDS_RMI {

namespace {

[[noreturn]] void throw_failure(CallFailure reason, const std::string& text)
{
    switch (reason) {
    case CallFailure::implementation_failed:
        throw INTERNAL_ERROR(text.c_str());
    case CallFailure::unknown_operation:
        throw BAD_PARAM(text.c_str());
    case CallFailure::server_lost:
        throw SERVICE_NOT_FOUND(text);
    case CallFailure::given_up:
        throw TIMEOUT(text);
    case CallFailure::closed:
    case CallFailure::exception_raised: // is kept as it is
        break;
    }
    throw BAD_INV_ORDER(text.c_str());
}

} // namespace

void CallOutcome::reply()
{
    {
        const std::lock_guard lock(m_mutex);
        m_replied = true;
    }
    m_settled.notify_all();
}

void CallOutcome::fail(CallFailure reason, const char* text)
{
    {
        const std::lock_guard lock(m_mutex);
        m_failure = reason;
        m_text = text;
    }
    m_settled.notify_all();
}

void CallOutcome::fail(const std::exception_ptr& exception)
{
    {
        const std::lock_guard lock(m_mutex);
        m_exception = exception;
    }
    m_settled.notify_all();
}

void CallOutcome::wait()
{
    std::unique_lock lock(m_mutex);
    m_settled.wait(lock, [this] { return m_replied || m_failure || m_exception; });
    if (m_exception)
        std::rethrow_exception(m_exception);
    if (!m_replied)
        throw_failure(*m_failure, m_text);
}

WaitingHandler::WaitingHandler(const Handler& inner, std::shared_ptr<CallOutcome> outcome)
    : m_inner(inner), m_outcome(std::move(outcome))
{
}

WaitingHandler::~WaitingHandler() = default;

void WaitingHandler::handleReply(DDS::ReadCondition* condition)
{
    try {
        m_inner->handleReply(condition);
    } catch (const DecodingError&) {
        throw;
    } catch (const RaisedException&) {
        throw;
    } catch (...) { // such as a lack of memory for the result
        m_outcome->fail(std::current_exception());
        return;
    }
    m_outcome->reply();
}

void WaitingHandler::handleFailure(CallFailure reason, const char* text)
{
    if (reason == CallFailure::exception_raised)
        m_outcome->fail(std::current_exception());
    else
        m_outcome->fail(reason, text);
}

} // namespace org::opensplice::DDS_RMI
