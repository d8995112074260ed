// SPDX-License-Identifier: Apache-2.0
#ifndef VARNEL_INTERF_H
#define VARNEL_INTERF_H

#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/data/KX_JSON.h>
#include <zeb/api/mdw/KX_DDS_RMI_PROXY.h>

#include "VarnelRMI_InterfaceProxy.h"

#include "varnel_operations.h"

/// The JSON-RPC methods for managing a network of sensor nodes, as varnel_operations.h lists them.
///
/// Each one reads its parameters from the member "params" of the request `in`, starts the remote operation of
/// the same name and returns 0 without waiting for the answer, which a reply handler logs later. `out` is
/// left alone. Whatever a getter, an allocation or the remote call throws passes through. Any number of
/// threads may call them at the same time.
class VarnelInterface
{
public:
    typedef DDS_RMI::VarnelRMI::VarnelRMIServiceInterfaceProxy Proxy;
    typedef zeb::api::data::KX_JSON KX_JSON;

    VarnelInterface();
    virtual ~VarnelInterface();
    VarnelInterface(const VarnelInterface&) = delete;
    VarnelInterface& operator=(const VarnelInterface&) = delete;

#define VARNEL_DECLARATION(op, reply_text) int op(const KX_JSON& in, KX_JSON& out);
    VARNEL_OPERATIONS(VARNEL_DECLARATION)
#undef VARNEL_DECLARATION

    /// What the methods call. Empty until the service has been found; no method may be called before.
    org::opensplice::DDS_RMI::shared_ptr<Proxy> m_proxy;
};

/// The method table that the host gets. It looks the remote service up once, when it is constructed; without
/// the service it is unbound for its whole life and has no methods.
///
/// It must not move, because the methods in the table point at its interface.
class VarnelRPCHandler : public zeb::api::KX_RPCHandler
{
public:
    VarnelRPCHandler();
    ~VarnelRPCHandler() override;
    VarnelRPCHandler(const VarnelRPCHandler&) = delete;
    VarnelRPCHandler& operator=(const VarnelRPCHandler&) = delete;

    /// Whether the service was found; writes one line to standard output on every call.
    bool isBound() override;

private:
    void BuildInterface();

    // The holder is destroyed before the interface, which therefore drops the last handle on the proxy.
    VarnelInterface m_interface;
    zeb::api::mdw::KX_DDS_RMI_PROXY<VarnelInterface::Proxy> m_proxyHolder;
    bool m_bound;
};

/// The library's one exported symbol: a new handler, which the host deletes. Never null, but perhaps unbound;
/// each call makes another handler. What the construction throws passes through.
extern "C" zeb::api::KX_RPCHandler* RPCHandler();

#endif
