// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_MDW_KX_DDS_RMI_PROXY_H
#define ZEB_API_MDW_KX_DDS_RMI_PROXY_H

#include <syslog.h>

#include <cstdint>
#include <iostream>
#include <random>
#include <string>
#include <utility>

#include "zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"

namespace zeb {
namespace api {
namespace mdw {

/// Finds the client proxy of one remote service when it is constructed, and holds it. The lookup happens
/// once; after that the holder is read-only until it is destroyed.
///
/// Construction blocks for as long as the lookup waits (see setServiceDiscoveryTimeout). A service that is
/// not there is no error: ask isProxyFound(). Every other failure leaves the constructor as an exception.
///
/// `TProxy` is a generated proxy. A handler that holds one is bound when it was found:
///
///     class HouseHandler : public KX_RPCHandler
///     {
///     public:
///         HouseHandler() : m_attic("Attic") {}
///         bool isBound() override { return m_attic.isProxyFound(); }
///
///     private:
///         mdw::KX_DDS_RMI_PROXY<ThermometerInterfaceProxy> m_attic;
///     };
template <class TProxy>
class KX_DDS_RMI_PROXY : public KX_DDS_RMI_RUNTIME
{
public:
    /// Starts the runtime and looks any instance of the service up.
    explicit KX_DDS_RMI_PROXY(std::string serviceName);
    ~KX_DDS_RMI_PROXY();

    /// Whether the proxy was found; writes one line to standard output on every call.
    bool isProxyFound();

    /// A new counted reference to the proxy; empty when none was found.
    org::opensplice::DDS_RMI::shared_ptr<TProxy> getProxy() { return m_serverProxy; }

private:
    void lookUpProxy();

    org::opensplice::DDS_RMI::shared_ptr<TProxy> m_serverProxy;
    bool m_proxyFound;
    std::string m_serviceName;
    std::int32_t m_instanceId;
};

template <class TProxy>
KX_DDS_RMI_PROXY<TProxy>::KX_DDS_RMI_PROXY(std::string serviceName)
    : m_serverProxy(), m_proxyFound(false), m_serviceName(std::move(serviceName)), m_instanceId(1)
{
    std::cout << "KX_DDS_RMI_PROXY construct" << std::endl;
    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");
    startRUNTIME(true);

    std::random_device device("default");
    std::mt19937 engine(device());
    std::uniform_int_distribution<std::int32_t> instances(1, 10000);
    m_instanceId = instances(engine);
    std::cout << "=== Getting MY server proxy " << m_serviceName << " " << m_instanceId << std::endl;
    syslog(LOG_INFO, "Getting MY server proxy %s %d", m_serviceName.c_str(), static_cast<int>(m_instanceId));

    try {
        lookUpProxy();
    } catch (org::opensplice::DDS_RMI::SERVICE_NOT_FOUND&) {
        std::cout << " *** Unable to find the service !" << std::endl;
        syslog(LOG_INFO, " *** Unable to find the service !");
        stopRUNTIME();
        m_proxyFound = false;
    }
}

template <class TProxy>
KX_DDS_RMI_PROXY<TProxy>::~KX_DDS_RMI_PROXY()
{
    std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;
}

template <class TProxy>
bool KX_DDS_RMI_PROXY<TProxy>::isProxyFound()
{
    std::cout << "KX_DDS_RMI_PROXY isProxyFound" << m_proxyFound << std::endl;
    return m_proxyFound;
}

template <class TProxy>
void KX_DDS_RMI_PROXY<TProxy>::lookUpProxy()
{
    org::opensplice::DDS_RMI::DDS_Service::getServerProxy<TProxy>(m_serviceName, m_instanceId, m_serverProxy);
    if (m_serverProxy.get() == nullptr) {
        syslog(LOG_INFO, " *** Failed to get the server proxy !");
        return;
    }
    syslog(LOG_INFO, "=== Succeeded in getting the server proxy named %s", m_serviceName.c_str());
    m_proxyFound = true;
}

} // namespace mdw
} // namespace api
} // namespace zeb

#endif
