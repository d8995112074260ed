// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_INTERFACE_PROXY_H
#define DDSRMI_INTERFACE_PROXY_H

#include <memory>

#include "ddsrmi/async_reply_handler.h"
#include "ddsrmi/interface_info.h"
#include "ddsrmi/ref_counted.h"
#include "ddsrmi/shared_ptr.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

class Encoder;
class RequestChannel;

/// A client's connection to one service. Generated proxies derive from it.
///
/// Any number of threads may call operations at the same time. Reply hooks run one after the other on a
/// thread of the proxy's own. When the last handle is dropped, outstanding requests are given up and, once
/// that has returned, no reply hook of the proxy is running (but the one that dropped it) or will run.
///
/// A call throws BAD_PARAM when an argument is not of its type (a bounded text or sequence that is too long,
/// an enum without that value, a text with a NUL inside), SERVICE_NOT_FOUND at once when no server is there,
/// TIMEOUT when the server's queues stay full for the blocking time (1 s), BAD_PARAM when the server's
/// version of the interface has no such operation, BAD_INV_ORDER when the runtime has been stopped.
class CInterfaceProxy : public virtual RefCounted
{
public:
    ~CInterfaceProxy() override;

    /// How long, in milliseconds, the reply of a request that is made from now on is waited for; then the
    /// request is given up, its handler released and one line written to standard error. 600,000 unless set.
    void setTimeout(unsigned milliseconds);
    /// In milliseconds.
    unsigned getTimeout() const;

protected:
    /// For the ProxyFactory of a generated proxy.
    explicit CInterfaceProxy(const ProxySeed& seed);

    /// Sends a request with the encoded arguments and returns. Takes a reference to `handler` until its reply
    /// has been delivered or the call has ended without one (see call_failure.h).
    void send_request(std::size_t operation, const Encoder& request, CAsyncReplyHandlerImpl* handler);

    /// The same for an operation that nobody waits for: how it ends is told on standard error if it fails.
    void send_oneway(std::size_t operation, const Encoder& request);

    /// The same, and waits until `handler` has received the reply. Throws what the operation raises,
    /// INTERNAL_ERROR when the implementation has failed, SERVICE_NOT_FOUND when the server was lost
    /// meanwhile, TIMEOUT when no reply comes in time, and BAD_INV_ORDER when the runtime is stopped
    /// meanwhile or on the thread that delivers this proxy's replies.
    void send_request_and_wait(std::size_t operation, const Encoder& request,
                               const shared_ptr<CAsyncReplyHandlerImpl>& handler);

private:
    std::shared_ptr<RequestChannel> m_channel;
};

typedef shared_ptr<CInterfaceProxy> CInterfaceProxy_ref;

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
