// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/interface_proxy.h"

#include "client/request_channel.h"
#include "ddsrmi/encoding.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

/// The server answers every call, and so grants room for more; nobody wants to know what.
class Unheeded final : public CAsyncReplyHandlerImpl
{
    void handleReply(DDS::ReadCondition* /*condition*/) override {}
};

} // namespace

CInterfaceProxy::CInterfaceProxy(const ProxySeed& seed) : m_channel(seed.channel) {}

CInterfaceProxy::~CInterfaceProxy()
{
    try {
        m_channel->close();
    } catch (...) {
        report_current_exception("releasing a proxy");
    }
}

void CInterfaceProxy::setTimeout(unsigned milliseconds)
{
    m_channel->set_timeout(milliseconds);
}

unsigned CInterfaceProxy::getTimeout() const
{
    return m_channel->timeout();
}

void CInterfaceProxy::send_request(std::size_t operation, const Encoder& request,
                                   CAsyncReplyHandlerImpl* handler)
{
    m_channel->send(operation, request.bytes(), Handler(handler));
}

void CInterfaceProxy::send_oneway(std::size_t operation, const Encoder& request)
{
    m_channel->send(operation, request.bytes(), Handler(new Unheeded));
}

void CInterfaceProxy::send_request_and_wait(std::size_t operation, const Encoder& request,
                                            const shared_ptr<CAsyncReplyHandlerImpl>& handler)
{
    m_channel->send_and_wait(operation, request.bytes(), handler);
}

} // namespace org::opensplice::DDS_RMI
