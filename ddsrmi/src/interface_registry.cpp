// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/interface_registry.h"

#include "client/proxy_factories.h"
#include "client/request_channel.h"
#include "dds/refused_peers.h"
#include "dds/signal.h"
#include "ddsrmi/exceptions.h"
#include "discovery/service_watch.h"
#include "report.h"
#include "runtime_core.h"

namespace org::opensplice::DDS_RMI {

namespace {

SERVICE_NOT_FOUND not_found(const Entity& participant, const std::string& service)
{
    const std::string text = "service '" + service + "' was not found within the discovery time";
    const std::string unheard = peers_not_heard(participant);
    if (!unheard.empty())
        report(text + unheard);
    return SERVICE_NOT_FOUND(text + unheard);
}

// Waits until some server announces the service and gives the name of its interface.
std::string wait_for_announcement(const Entity& participant, ServiceWatch& watch, Signal& signal,
                                  const std::string& service, Clock::time_point deadline)
{
    watch.refresh();
    while (watch.live().empty()) {
        if (Clock::now() >= deadline)
            throw not_found(participant, service);
        signal.wait_until(deadline);
        watch.refresh();
    }
    return watch.live().back().announcement.server_class;
}

} // namespace

CInterfaceRegistry::CInterfaceRegistry(const std::shared_ptr<RuntimeCore>& core) : m_core(core) {}
CInterfaceRegistry::~CInterfaceRegistry() = default;

CInterfaceProxy_ref CInterfaceRegistry::resolve(const std::string& server_name, const std::string& proxy_name,
                                                DDS::Long server_instance, DDS::Long proxy_instance)
{
    const auto participant = m_core->participant();
    if (participant == nullptr)
        throw BAD_INV_ORDER("a lookup needs a started runtime");
    const RuntimeOptions options = m_core->options();
    const auto deadline = options.discovery_deadline(Clock::now());

    const auto signal = std::make_shared<Signal>();
    ServiceWatch watch(*participant, server_name, server_instance, signal);
    const auto server_class = wait_for_announcement(*participant, watch, *signal, server_name, deadline);
    const auto known = find_proxy(server_class);
    if (!known)
        return {};

    const auto channel = std::make_shared<RequestChannel>(participant, *known->interface_info,
                                                          ProxyNames{server_name, proxy_name, proxy_instance},
                                                          std::move(watch), signal, m_core->timeout());
    channel->open();
    const CInterfaceProxy_ref proxy(known->factory(ProxySeed{channel}));
    m_core->add(channel);
    if (!channel->wait_until_connected(deadline))
        throw not_found(*participant, server_name);
    return proxy;
}

} // namespace org::opensplice::DDS_RMI
