// SPDX-License-Identifier: Apache-2.0
#include "process/service_host.h"

#include <exception>
#include <iostream>
#include <stdexcept>

namespace varnel {

namespace rmi = org::opensplice::DDS_RMI;

namespace {

std::string threading_option(int threads)
{
    return "--RMIServerThreadingModel=" + (threads == 1 ? "ST" : "MT," + std::to_string(threads));
}

/// For destructors: what cannot be undone is said, and the rest goes on.
template <class Action>
void attempt(const char* what, Action action) noexcept
{
    try {
        action();
    } catch (const std::exception& error) {
        std::cerr << "varnelde: " << what << " failed: " << error.what() << std::endl;
    }
}

} // namespace

ServerRuntime::ServerRuntime(int threads) : m_runtime(rmi::CRuntime::getDefaultRuntime())
{
    const std::string threading = threading_option(threads);
    const char* arguments[] = {"varnelde", threading.c_str()};
    if (!m_runtime->start(2, arguments))
        throw std::runtime_error(
            "the DDS RMI runtime does not start; check CYCLONEDDS_URI and the network interface "
            "that it names");
}

ServerRuntime::~ServerRuntime()
{
    attempt("stopping the DDS RMI runtime", [this] { m_runtime->stop(); });
}

RegisteredService::RegisteredService(const VarnelServiceHandle& service, const std::string& name,
                                     int instance)
    : m_name(name), m_instance(instance)
{
    using Skeleton = DDS_RMI::VarnelRMI::VarnelRMIServiceInterface;
    if (!rmi::DDS_Service::register_interface<Skeleton, Skeleton>(service, name, instance))
        throw std::runtime_error("the service '" + name + "', instance " + std::to_string(instance) +
                                 ", cannot be registered; see the message before this one");
}

RegisteredService::~RegisteredService()
{
    attempt("withdrawing the service",
            [this] { rmi::DDS_Service::unregister_interface(m_name, m_instance); });
}

} // namespace varnel
