// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/dds_service.h"

#include "runtime_core.h"

namespace org::opensplice::DDS_RMI {

namespace {

std::shared_ptr<RuntimeCore> default_runtime()
{
    return RuntimeCore::for_domain(DDS_DOMAIN_DEFAULT);
}

} // namespace

DDS_Service_Impl DDS_Service::DDS_ServiceImpl;

bool DDS_Service_Impl::isUsable() const
{
    return default_runtime()->is_up();
}

CInterfaceRegistry_ref DDS_Service_Impl::getRegistry() const
{
    return CInterfaceRegistry_ref(new CInterfaceRegistry(default_runtime()));
}

bool DDS_Service_Impl::register_interface(const shared_ptr<CInterfaceSkeleton>& implementation,
                                          const std::string& name, DDS::Long instance) const
{
    return default_runtime()->register_interface(implementation, name, instance);
}

bool DDS_Service_Impl::unregister_interface(const std::string& name, DDS::Long instance) const
{
    return default_runtime()->unregister_interface(name, instance);
}

void DDS_Service_Impl::run(const std::string& name) const
{
    default_runtime()->run(name);
}

void DDS_Service_Impl::shutdown(const std::string& name) const
{
    default_runtime()->shutdown(name);
}

bool DDS_Service_Impl::is_running(const std::string& name) const
{
    return default_runtime()->is_running(name);
}

} // namespace org::opensplice::DDS_RMI
