// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/async_reply_handler.h"

#include "client/handler_activation.h"

#include <mutex>

#include "ddsrmi/exceptions.h"

namespace org::opensplice::DDS_RMI {

namespace {

// Guards bActive of every handler: one handler may be offered to several proxies at once.
std::mutex activation_mutex;

} // namespace

CAsyncReplyHandler::~CAsyncReplyHandler() = default;

CAsyncReplyHandlerImpl::CAsyncReplyHandlerImpl() : bActive(false) {}
CAsyncReplyHandlerImpl::~CAsyncReplyHandlerImpl() = default;

void CAsyncReplyHandlerImpl::asyncWait(DDS::QueryCondition* /*condition*/) {}

void activate(CAsyncReplyHandlerImpl& handler)
{
    const std::lock_guard lock(activation_mutex);
    if (handler.bActive)
        throw BAD_PARAM("the reply handler still waits for the reply of another request");
    handler.bActive = true;
}

void deactivate(CAsyncReplyHandlerImpl& handler)
{
    const std::lock_guard lock(activation_mutex);
    handler.bActive = false;
}

} // namespace org::opensplice::DDS_RMI
