// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_SERVICE_H
#define DDSRMI_DDS_SERVICE_H

#include <string>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/interface_proxy.h"
#include "ddsrmi/interface_registry.h"
#include "ddsrmi/interface_skeleton.h"
#include "ddsrmi/runtime.h"
#include "ddsrmi/shared_ptr.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// What DDS_Service does, without the types of a particular interface; refers to the default runtime.
class DDS_Service_Impl
{
public:
    /// Whether the default runtime is up.
    bool isUsable() const;
    /// What lookups go through.
    CInterfaceRegistry_ref getRegistry() const;
    /// As DDS_Service::register_interface, of a skeleton of any interface.
    bool register_interface(const shared_ptr<CInterfaceSkeleton>& implementation, const std::string& name,
                            DDS::Long instance) const;
    /// As DDS_Service::unregister_interface.
    bool unregister_interface(const std::string& name, DDS::Long instance) const;
    /// As CRuntime::run, of one service.
    void run(const std::string& name) const;
    /// As CRuntime::shutdown, of one service.
    void shutdown(const std::string& name) const;
    /// Whether the service is being served.
    bool is_running(const std::string& name) const;
};

/// The facade to the default runtime that clients and servers use. Any thread may call its functions. A
/// server:
///
///     const CRuntime_ref runtime = CRuntime::getDefaultRuntime();
///     runtime->start(argc, argv);
///     DDS_Service::register_interface<ThermometerInterface, Thermometer>(
///         shared_ptr<Thermometer>(new Thermometer), "Attic", 1);
///     runtime->run();
///
/// A client, with the runtime started:
///
///     shared_ptr<ThermometerInterfaceProxy> attic;
///     if (DDS_Service::getServerProxy("Attic", 1, attic))
///         std::cout << attic->degrees();
class DDS_Service
{
public:
    /// What the functions below go to.
    static DDS_Service_Impl DDS_ServiceImpl;

    /// Offers `implementation` as the service `name` with that instance number; clients see it once it is
    /// run. False, with a line on standard error, when the runtime is not up or has that service already.
    template <class Skeleton, class Impl>
    static bool register_interface(const shared_ptr<Impl>& implementation, const std::string& name,
                                   DDS::Long instance)
    {
        Skeleton::_register_service_info();
        const shared_ptr<Skeleton> skeleton(implementation.get());
        return DDS_ServiceImpl.register_interface(shared_ptr<CInterfaceSkeleton>(skeleton.get()), name,
                                                  instance);
    }

    /// Withdraws a service; when it has returned, none of its operations is running (but the one that called
    /// this). False when there is no such service.
    static bool unregister_interface(const std::string& name, DDS::Long instance)
    {
        return DDS_ServiceImpl.unregister_interface(name, instance);
    }

    /// Serves a registered service until it is shut down.
    static void run(const std::string& name) { DDS_ServiceImpl.run(name); }
    /// Ends run(name); returns when its operations that are being run have ended.
    static void shutdown(const std::string& name) { DDS_ServiceImpl.shutdown(name); }
    /// Whether the service is being served.
    static bool is_running(const std::string& name) { return DDS_ServiceImpl.is_running(name); }

    /// Looks the proxy of any instance of a service up. Waits and throws as CInterfaceRegistry::resolve does;
    /// leaves `proxy` alone and gives false when the runtime is not usable or nothing was found; `proxy` is
    /// empty when what was found is no Proxy.
    template <class Proxy>
    static bool getServerProxy(const std::string& name, DDS::Long proxy_instance, shared_ptr<Proxy>& proxy)
    {
        return getServerProxy<Proxy>(name, -1, proxy_instance, proxy);
    }

    /// The same for one instance of the service; -1 means any.
    template <class Proxy>
    static bool getServerProxy(const std::string& name, DDS::Long server_instance, DDS::Long proxy_instance,
                               shared_ptr<Proxy>& proxy)
    {
        if (!DDS_ServiceImpl.isUsable())
            return false;
        Proxy::_register_service_info();
        const CInterfaceRegistry_ref registry = DDS_ServiceImpl.getRegistry();
        const CInterfaceProxy_ref found =
            registry->resolve(name, name + "_Proxy", server_instance, proxy_instance);
        if (found.get() == nullptr)
            return false;
        proxy = shared_ptr<Proxy>(dynamic_cast<Proxy*>(found.get()));
        return proxy.get() != nullptr;
    }
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
