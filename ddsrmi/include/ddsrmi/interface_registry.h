// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_INTERFACE_REGISTRY_H
#define DDSRMI_INTERFACE_REGISTRY_H

#include <memory>
#include <string>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/interface_proxy.h"
#include "ddsrmi/ref_counted.h"
#include "ddsrmi/shared_ptr.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

class RuntimeCore;

/// Finds services. Any thread may use it.
class CInterfaceRegistry : public virtual RefCounted
{
public:
    /// For the runtime; see CRuntime::getRegistry.
    explicit CInterfaceRegistry(const std::shared_ptr<RuntimeCore>& core);
    ~CInterfaceRegistry() override;

    /// Finds the service `server_name` and connects to it; server instance -1 means any instance. The names
    /// and numbers of the proxy are what requests carry as the client's identification; they need not be
    /// unique.
    ///
    /// Waits for the runtime's discovery time at most, then throws SERVICE_NOT_FOUND. Throws BAD_INV_ORDER
    /// when the runtime is not started. Empty when the service's interface is not known in this process.
    CInterfaceProxy_ref resolve(const std::string& server_name, const std::string& proxy_name,
                                DDS::Long server_instance, DDS::Long proxy_instance);

private:
    std::shared_ptr<RuntimeCore> m_core;
};

typedef shared_ptr<CInterfaceRegistry> CInterfaceRegistry_ref;

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
