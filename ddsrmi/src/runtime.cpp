// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/runtime.h"

#include <utility>

#include "runtime_core.h"
#include "runtime_options.h"

namespace org::opensplice::DDS_RMI {

CRuntime_ref CRuntime::getDefaultRuntime()
{
    return CRuntime_ref(new CRuntime(RuntimeCore::for_domain(DDS_DOMAIN_DEFAULT)));
}

CRuntime_ref CRuntime::getRuntime(DDS::Long domain)
{
    return CRuntime_ref(new CRuntime(RuntimeCore::for_domain(static_cast<dds_domainid_t>(domain))));
}

CRuntime::CRuntime(const std::shared_ptr<RuntimeCore>& core) : m_core(core), m_hold() {}

CRuntime::~CRuntime()
{
    m_core->leave(m_hold);
}

bool CRuntime::start(int argc, const char* argv[])
{
    const auto options = parse_runtime_options(argc, argv);
    return options && m_core->start(*options, m_hold);
}

bool CRuntime::stop()
{
    return m_core->stop(m_hold);
}

bool CRuntime::isUsable()
{
    return m_core->is_up();
}

void CRuntime::run()
{
    m_core->run_all();
}

// The published interface takes the name by value.
void CRuntime::run(std::string service) // NOLINT(performance-unnecessary-value-param)
{
    m_core->run(service);
}

void CRuntime::shutdown(bool wait)
{
    m_core->shutdown_all(wait);
}

void CRuntime::shutdown(std::string service) // NOLINT(performance-unnecessary-value-param)
{
    m_core->shutdown(service);
}

void CRuntime::shutdown(const char* service)
{
    m_core->shutdown(service);
}

bool CRuntime::is_running()
{
    return m_core->is_running();
}

CInterfaceRegistry_ref CRuntime::getRegistry()
{
    return CInterfaceRegistry_ref(new CInterfaceRegistry(m_core));
}

void CRuntime::setTimeout(unsigned milliseconds)
{
    m_core->set_timeout(milliseconds);
}

unsigned CRuntime::getTimeout()
{
    return m_core->timeout();
}

ServerThreadingPolicy CRuntime::getServerThreadingPolicy()
{
    return m_core->server_threading();
}

void CRuntime::setServerThreadingPolicy(const ServerThreadingPolicy& policy)
{
    m_core->set_server_threading(policy);
}

} // namespace org::opensplice::DDS_RMI
