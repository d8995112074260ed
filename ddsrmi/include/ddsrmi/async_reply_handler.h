// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_ASYNC_REPLY_HANDLER_H
#define DDSRMI_ASYNC_REPLY_HANDLER_H

#include "ddsrmi/dds_types.h"
#include "ddsrmi/ref_counted.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// Receives the reply of one outstanding request. The RMI layer holds a reference from the call until the
/// reply has been delivered or the request given up, and drops it then, on a thread of its own.
class CAsyncReplyHandler : public virtual RefCounted
{
public:
    ~CAsyncReplyHandler() override;

    /// For RMI layers that wait for every reply on a condition of its own. Never called here; does nothing.
    virtual void asyncWait(DDS::QueryCondition* condition) = 0;

    /// Called by the RMI layer, on a thread of the runtime, when the reply is there. What it throws is
    /// reported on standard error.
    virtual void handleReply(DDS::ReadCondition* condition) = 0;
};

/// Base of the generated reply handlers, from which a client derives its own and overrides the reply hooks.
/// A handler may be used again once its reply has been delivered; a call with one that is still in use throws
/// BAD_PARAM.
class CAsyncReplyHandlerImpl : public CAsyncReplyHandler
{
public:
    CAsyncReplyHandlerImpl();
    ~CAsyncReplyHandlerImpl() override;

    void asyncWait(DDS::QueryCondition* condition) override;

    /// Whether a request with this handler is outstanding. Written by the RMI layer under a lock of its own.
    bool bActive;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
