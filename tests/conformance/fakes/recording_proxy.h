// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_RECORDING_PROXY_H
#define TESTS_CONFORMANCE_RECORDING_PROXY_H

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "VarnelRMI_InterfaceProxy.h"
#include "VarnelRMI_operations.h"

namespace conformance {

/// One call that a proxy has received.
struct ReceivedCall
{
    std::string operation;
    /// The arguments before the handler: texts in quotes, a null pointer as null, switches as true and false.
    std::vector<std::string> arguments;
    /// The texts themselves, which the callee owns.
    std::vector<DDS::String> texts;
    org::opensplice::DDS_RMI::CAsyncReplyHandlerImpl* handler;
    /// Hands the handler a reply, as the RMI layer does.
    std::function<void(DDS::Long)> reply;
    /// Keeps the handler, unless the proxy keeps none.
    org::opensplice::DDS_RMI::shared_ptr<org::opensplice::DDS_RMI::CAsyncReplyHandlerImpl> kept;
};

/// A client proxy that sends nothing: it records each call and keeps its texts and its handler. Any number of
/// threads may call it.
class RecordingProxy : public DDS_RMI::VarnelRMI::VarnelRMIServiceInterfaceProxy
{
public:
    RecordingProxy();
    /// Frees the texts.
    ~RecordingProxy() override;

    /// Whether it takes a reference to the handlers of the calls to come; it does unless told.
    void keep_handlers(bool keep) { m_keeps_handlers = keep; }

    const std::deque<ReceivedCall>& calls() const { return m_calls; }
    /// Drops the calls, their handlers and their texts.
    void forget_calls();

#define RECORDED(op, parameters, parameters_with_handler, arguments)                                         \
    DDS::Long op parameters override;                                                                        \
    void async_##op parameters_with_handler override;
    FOR_EVERY_OPERATION(RECORDED)
#undef RECORDED

private:
    void receive(const ReceivedCall& call);

    bool m_keeps_handlers = true;
    std::mutex m_mutex;
    std::deque<ReceivedCall> m_calls; // guarded by m_mutex while methods may run
};

} // namespace conformance

#endif
