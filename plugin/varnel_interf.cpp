// SPDX-License-Identifier: Apache-2.0
#include "varnel_interf.h"

#include <os_stdlib.h>
#include <zeb/api/RpcMethod.h>

#include <cstring>
#include <iostream>
#include <string>

#include "varnel_reply_handlers.h"

using org::opensplice::DDS_RMI::shared_ptr;
using zeb::api::data::KX_JSON;

namespace {

typedef VarnelInterface::Proxy Proxy;

std::string textParameter(const KX_JSON& in, const char* key)
{
    return in.get_json_object("params").get_json_string(key);
}

int intParameter(const KX_JSON& in, const char* key)
{
    return in.get_json_object("params").get_json_int(key);
}

/// Never freed here: a remote call takes ownership of the texts that it is given.
DDS::String handOverCopy(const char* text)
{
    if (text == nullptr)
        return nullptr;
    const DDS::String copy = new char[std::strlen(text) + 1];
    copy[0] = '\0';
    os_strcpy(copy, text);
    return copy;
}

DDS::String copiedParameter(const KX_JSON& in, const char* key)
{
    return handOverCopy(textParameter(in, key).c_str());
}

/// Unlike other texts, the list is copied while the value that it comes from is still held.
DDS::String copiedNodeList(const KX_JSON& in)
{
    return handOverCopy(in.get_json_object("params").get_json_string("mac_addr_list").c_str());
}

void logCall(const char* operation)
{
    std::cout << "CALL RPC " << operation << std::endl;
}

// The two ways to start a remote operation, which take the parameters when they have been read. The RMI layer
// holds the handler for as long as the request is outstanding. For each operation it is laid down which of
// the two it takes, and nothing else tells: the operations that begin alike do not all take the same. A new
// one takes logThenCall, unless a call is not to be logged before it is certain that its reply can be
// received.

/// The call is in the log even when its reply handler cannot be made.
template <class Handler, class Result, class... Parameters, class... Arguments>
int logThenCall(const shared_ptr<Proxy>& proxy, const char* operation, Result (Proxy::*start)(Parameters...),
                Arguments... arguments)
{
    logCall(operation);
    const shared_ptr<Handler> handler(new Handler);
    (proxy.get()->*start)(arguments..., handler.get());
    return 0;
}

/// No call is in the log whose reply handler cannot be made.
template <class Handler, class Result, class... Parameters, class... Arguments>
int makeHandlerThenCall(const shared_ptr<Proxy>& proxy, const char* operation,
                        Result (Proxy::*start)(Parameters...), Arguments... arguments)
{
    const shared_ptr<Handler> handler(new Handler);
    logCall(operation);
    (proxy.get()->*start)(arguments..., handler.get());
    return 0;
}

struct Method
{
    const char* name;
    zeb::api::RpcMethod<VarnelInterface>::Method function;
};

#define VARNEL_METHOD(op, reply_text) {#op, &VarnelInterface::op},
const Method methods[] = {VARNEL_OPERATIONS(VARNEL_METHOD)};
#undef VARNEL_METHOD

} // namespace

VarnelInterface::VarnelInterface()
{
    std::cout << "VarnelInterface constructor" << std::endl;
}

VarnelInterface::~VarnelInterface()
{
    std::cout << "VarnelInterface destructor" << std::endl;
}

int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)
{
    return logThenCall<MY_network_get_info_handler>(m_proxy, "network_get_info",
                                                    &Proxy::async_network_get_info);
}

int VarnelInterface::network_get_node_list(const KX_JSON&, KX_JSON&)
{
    return logThenCall<MY_network_get_node_list_handler>(m_proxy, "network_get_node_list",
                                                         &Proxy::async_network_get_node_list);
}

int VarnelInterface::network_decommission(const KX_JSON&, KX_JSON&)
{
    return logThenCall<MY_network_decommission_handler>(m_proxy, "network_decommission",
                                                        &Proxy::async_network_decommission);
}

int VarnelInterface::network_commission(const KX_JSON& in, KX_JSON&)
{
    return makeHandlerThenCall<MY_network_commission_handler>(
        m_proxy, "network_commission", &Proxy::async_network_commission, copiedNodeList(in));
}

int VarnelInterface::network_add_nodes(const KX_JSON& in, KX_JSON&)
{
    return makeHandlerThenCall<MY_network_add_nodes_handler>(
        m_proxy, "network_add_nodes", &Proxy::async_network_add_nodes, copiedNodeList(in));
}

int VarnelInterface::network_remove_nodes(const KX_JSON& in, KX_JSON&)
{
    return makeHandlerThenCall<MY_network_remove_nodes_handler>(
        m_proxy, "network_remove_nodes", &Proxy::async_network_remove_nodes, copiedNodeList(in));
}

int VarnelInterface::network_get_nodes_status(const KX_JSON& in, KX_JSON&)
{
    return makeHandlerThenCall<MY_network_get_nodes_status_handler>(
        m_proxy, "network_get_nodes_status", &Proxy::async_network_get_nodes_status, copiedNodeList(in));
}

int VarnelInterface::advertising(const KX_JSON& in, KX_JSON&)
{
    const bool on = textParameter(in, "on") == "true";
    return makeHandlerThenCall<MY_advertising_handler>(m_proxy, "advertising", &Proxy::async_advertising, on);
}

int VarnelInterface::node_get_config(const KX_JSON& in, KX_JSON&)
{
    return logThenCall<MY_node_get_config_handler>(m_proxy, "node_get_config", &Proxy::async_node_get_config,
                                                   copiedParameter(in, "mac_addr"));
}

int VarnelInterface::node_set_config(const KX_JSON& in, KX_JSON&)
{
    const DDS::String node = copiedParameter(in, "mac_addr");
    const DDS::String config = copiedParameter(in, "newCfg");
    return logThenCall<MY_node_set_config_handler>(m_proxy, "node_set_config", &Proxy::async_node_set_config,
                                                   node, config);
}

int VarnelInterface::node_set_config_revert(const KX_JSON& in, KX_JSON&)
{
    const DDS::String node = copiedParameter(in, "mac_addr");
    const DDS::String config = copiedParameter(in, "newCfg");
    const int duration = intParameter(in, "duration");
    return logThenCall<MY_node_set_config_revert_handler>(
        m_proxy, "node_set_config_revert", &Proxy::async_node_set_config_revert, node, config, duration);
}

int VarnelInterface::node_get_data(const KX_JSON& in, KX_JSON&)
{
    return makeHandlerThenCall<MY_node_get_data_handler>(
        m_proxy, "node_get_data", &Proxy::async_node_get_data, copiedParameter(in, "mac_addr"));
}

int VarnelInterface::test_node_create(const KX_JSON& in, KX_JSON&)
{
    const DDS::String node = copiedParameter(in, "mac_addr");
    const int type = std::stoi(textParameter(in, "type"));
    return logThenCall<MY_test_node_create_handler>(m_proxy, "test_node_create",
                                                    &Proxy::async_test_node_create, node, type);
}

int VarnelInterface::test_node_set_sensor_data(const KX_JSON& in, KX_JSON&)
{
    const DDS::String node = copiedParameter(in, "mac_addr");
    const DDS::String data = copiedParameter(in, "newData");
    return logThenCall<MY_test_node_set_sensor_data_handler>(
        m_proxy, "test_node_set_sensor_data", &Proxy::async_test_node_set_sensor_data, node, data);
}

VarnelRPCHandler::VarnelRPCHandler() : m_proxyHolder("VarnelDE_Server"), m_bound(false)
{
    std::cout << "VarnelRPCHandler constructor" << std::endl;
    if (!m_proxyHolder.isProxyFound())
        return;
    BuildInterface();
    m_bound = true;
}

VarnelRPCHandler::~VarnelRPCHandler()
{
    std::cout << "VarnelRPCHandler destructor" << std::endl;
}

bool VarnelRPCHandler::isBound()
{
    const bool bound = m_bound;
    std::cout << "VarnelRPCHandler isBound:" << bound << std::endl;
    return bound;
}

void VarnelRPCHandler::BuildInterface()
{
    m_interface.m_proxy = m_proxyHolder.getProxy();
    if (!m_proxyHolder.isProxyFound())
        return;
    for (const Method& method : methods) {
        const std::string name(method.name);
        const KX_JSON description(static_cast<const json_object*>(nullptr));
        AddMethod(new zeb::api::RpcMethod<VarnelInterface>(name, &m_interface, method.function, description));
    }
}

zeb::api::KX_RPCHandler* RPCHandler()
{
    return new VarnelRPCHandler;
}
