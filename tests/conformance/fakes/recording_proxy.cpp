// SPDX-License-Identifier: Apache-2.0
#include "recording_proxy.h"

#include "VarnelRMI_topics.h"
#include "recording.h"
#include "rmi_layer.h"

namespace conformance {

using namespace DDS_RMI::VarnelRMI;

namespace {

org::opensplice::DDS_RMI::ProxySeed seed;

std::string shown(DDS::String text)
{
    return text == nullptr ? "null" : '"' + std::string(text) + '"';
}

std::string shown(DDS::Long number)
{
    return std::to_string(number);
}

std::string shown(DDS::Boolean value)
{
    if (value > 1)
        return "boolean " + std::to_string(value);
    return value != 0 ? "true" : "false";
}

std::string line(const ReceivedCall& call)
{
    // A long text would make the record unreadable.
    constexpr std::size_t longest = 40;
    std::string text = call.operation + "(";
    for (const std::string& argument : call.arguments)
        text += (text.back() == '(' ? "" : ", ") + argument.substr(0, longest);
    return text + ")";
}

/// Hands `handler` a sample of its reply topic.
template <class Sample, class Handler>
std::function<void(DDS::Long)> deliverer(Handler* handler)
{
    return [handler](DDS::Long result) {
        Sample sample = {};
        sample.result = result;
        DDS::ReadCondition condition(&sample);
        handler->handleReply(&condition);
    };
}

} // namespace

RecordingProxy::RecordingProxy() : VarnelRMIServiceInterfaceProxy(seed)
{
    name_object(this, "proxy");
}

RecordingProxy::~RecordingProxy()
{
    record("lookup", "proxy released");
    forget_calls();
}

void RecordingProxy::forget_calls()
{
    const Unobserved unobserved;
    std::deque<ReceivedCall> calls;
    {
        const std::lock_guard lock(m_mutex);
        calls.swap(m_calls);
    }
    for (const ReceivedCall& call : calls)
        for (const DDS::String text : call.texts)
            DDS::string_free(text);
}

void RecordingProxy::receive(const ReceivedCall& call)
{
    record("call", line(call));
    reach("call");
    const std::lock_guard lock(m_mutex);
    m_calls.push_back(call);
    if (m_keeps_handlers)
        m_calls.back().kept.reset(call.handler);
}

DDS::Long RecordingProxy::refuse(const char* operation)
{
    record("call", std::string("waiting form of ") + operation);
    return 0;
}

DDS::Long RecordingProxy::network_commission(DDS::String)
{
    return refuse("network_commission");
}

void RecordingProxy::async_network_commission(DDS::String mac_addr_list,
                                              VarnelRMIService_network_commission_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_commission",
             {shown(mac_addr_list)},
             {mac_addr_list},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_commission_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::network_decommission()
{
    return refuse("network_decommission");
}

void RecordingProxy::async_network_decommission(VarnelRMIService_network_decommission_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_decommission",
             {},
             {},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_decommission_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::network_add_nodes(DDS::String)
{
    return refuse("network_add_nodes");
}

void RecordingProxy::async_network_add_nodes(DDS::String mac_addr_list,
                                             VarnelRMIService_network_add_nodes_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_add_nodes",
             {shown(mac_addr_list)},
             {mac_addr_list},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_add_nodes_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::network_remove_nodes(DDS::String)
{
    return refuse("network_remove_nodes");
}

void RecordingProxy::async_network_remove_nodes(DDS::String mac_addr_list,
                                                VarnelRMIService_network_remove_nodes_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_remove_nodes",
             {shown(mac_addr_list)},
             {mac_addr_list},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_remove_nodes_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::advertising(DDS::Boolean)
{
    return refuse("advertising");
}

void RecordingProxy::async_advertising(DDS::Boolean on, VarnelRMIService_advertising_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"advertising",
             {shown(on)},
             {},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_advertising_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::network_get_node_list()
{
    return refuse("network_get_node_list");
}

void RecordingProxy::async_network_get_node_list(
    VarnelRMIService_network_get_node_list_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_get_node_list",
             {},
             {},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_get_node_list_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::network_get_info()
{
    return refuse("network_get_info");
}

void RecordingProxy::async_network_get_info(VarnelRMIService_network_get_info_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_get_info",
             {},
             {},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_get_info_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::node_get_config(DDS::String)
{
    return refuse("node_get_config");
}

void RecordingProxy::async_node_get_config(DDS::String mac_addr,
                                           VarnelRMIService_node_get_config_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"node_get_config",
             {shown(mac_addr)},
             {mac_addr},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_node_get_config_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::node_set_config(DDS::String, DDS::String)
{
    return refuse("node_set_config");
}

void RecordingProxy::async_node_set_config(DDS::String mac_addr, DDS::String newCfg,
                                           VarnelRMIService_node_set_config_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"node_set_config",
             {shown(mac_addr), shown(newCfg)},
             {mac_addr, newCfg},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_node_set_config_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::node_get_data(DDS::String)
{
    return refuse("node_get_data");
}

void RecordingProxy::async_node_get_data(DDS::String mac_addr,
                                         VarnelRMIService_node_get_data_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"node_get_data",
             {shown(mac_addr)},
             {mac_addr},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_node_get_data_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::network_get_nodes_status(DDS::String)
{
    return refuse("network_get_nodes_status");
}

void RecordingProxy::async_network_get_nodes_status(
    DDS::String mac_addr_list, VarnelRMIService_network_get_nodes_status_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"network_get_nodes_status",
             {shown(mac_addr_list)},
             {mac_addr_list},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_network_get_nodes_status_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::node_set_config_revert(DDS::String, DDS::String, DDS::Long)
{
    return refuse("node_set_config_revert");
}

void RecordingProxy::async_node_set_config_revert(
    DDS::String mac_addr, DDS::String newCfg, DDS::Long duration,
    VarnelRMIService_node_set_config_revert_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"node_set_config_revert",
             {shown(mac_addr), shown(newCfg), shown(duration)},
             {mac_addr, newCfg},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_node_set_config_revert_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::test_node_create(DDS::String, DDS::Long)
{
    return refuse("test_node_create");
}

void RecordingProxy::async_test_node_create(DDS::String mac_addr, DDS::Long type,
                                            VarnelRMIService_test_node_create_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"test_node_create",
             {shown(mac_addr), shown(type)},
             {mac_addr},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_test_node_create_reply>(handler),
             {}});
}

DDS::Long RecordingProxy::test_node_set_sensor_data(DDS::String, DDS::String)
{
    return refuse("test_node_set_sensor_data");
}

void RecordingProxy::async_test_node_set_sensor_data(
    DDS::String mac_addr, DDS::String newData,
    VarnelRMIService_test_node_set_sensor_data_Reply_Handler* handler)
{
    const Unobserved unobserved;
    receive({"test_node_set_sensor_data",
             {shown(mac_addr), shown(newData)},
             {mac_addr, newData},
             handler,
             deliverer<DDS_RMI_VarnelRMI_VarnelRMIService_test_node_set_sensor_data_reply>(handler),
             {}});
}

} // namespace conformance
