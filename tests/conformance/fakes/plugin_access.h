// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_PLUGIN_ACCESS_H
#define TESTS_CONFORMANCE_PLUGIN_ACCESS_H

#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/data/KX_JSON.h>

#include <memory>
#include <string>

#include "VarnelRMI_InterfaceProxy.h"

class VarnelInterface;

// The plug-in's classes, in reach of tests that do not include the plug-in's headers.

namespace conformance {

using Proxy = DDS_RMI::VarnelRMI::VarnelRMIServiceInterfaceProxy;
using ProxyHandle = org::opensplice::DDS_RMI::shared_ptr<Proxy>;

/// The object with the fourteen operations.
class Operations
{
public:
    explicit Operations(Proxy* proxy);
    ~Operations();
    Operations(const Operations&) = delete;
    Operations& operator=(const Operations&) = delete;

    /// Runs the member function of that name.
    int run(const std::string& name, const zeb::api::data::KX_JSON& in, zeb::api::data::KX_JSON& out);

private:
    std::unique_ptr<VarnelInterface> m_interface;
};

/// What the plug-in's factory gives.
std::unique_ptr<zeb::api::KX_RPCHandler> make_handler();

/// Calls the private BuildInterface() of a handler that the factory has made.
void build_interface(zeb::api::KX_RPCHandler& handler);

/// A new VarnelInterface, to be deleted with delete_interface or otherwise through its own table.
void* new_interface();
void delete_interface(void* interface);
/// Its member m_proxy.
ProxyHandle& proxy_of(void* interface);

/// The holder that the plug-in finds its service with.
class Holder
{
public:
    explicit Holder(const std::string& service_name);
    ~Holder();
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    bool is_proxy_found();
    ProxyHandle proxy();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace conformance

#endif
