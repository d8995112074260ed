// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_RECORDING_PROXY_H
#define TESTS_CONFORMANCE_RECORDING_PROXY_H

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "VarnelRMI_InterfaceProxy.h"

namespace conformance {

/// One call that a proxy has received.
struct ReceivedCall
{
    std::string operation;
    /// The arguments before the handler: texts in quotes, a null pointer as null, switches as true and false.
    std::vector<std::string> arguments;
    /// The texts themselves, which the callee owns.
    std::vector<DDS::String> texts;
    org::opensplice::DDS_RMI::CAsyncReplyHandlerImpl* handler;
    /// Hands the handler a reply, as the RMI layer does.
    std::function<void(DDS::Long)> reply;
    /// Keeps the handler, unless the proxy keeps none.
    org::opensplice::DDS_RMI::shared_ptr<org::opensplice::DDS_RMI::CAsyncReplyHandlerImpl> kept;
};

/// A client proxy that sends nothing: it records each call and keeps its texts and its handler. Any number of
/// threads may call it.
class RecordingProxy : public DDS_RMI::VarnelRMI::VarnelRMIServiceInterfaceProxy
{
public:
    RecordingProxy();
    /// Frees the texts.
    ~RecordingProxy() override;

    /// Whether it takes a reference to the handlers of the calls to come; it does unless told.
    void keep_handlers(bool keep) { m_keeps_handlers = keep; }

    const std::deque<ReceivedCall>& calls() const { return m_calls; }
    /// Drops the calls, their handlers and their texts.
    void forget_calls();

    DDS::Long network_commission(DDS::String) override;
    void async_network_commission(
        DDS::String mac_addr_list,
        DDS_RMI::VarnelRMI::VarnelRMIService_network_commission_Reply_Handler* handler) override;
    DDS::Long network_decommission() override;
    void async_network_decommission(
        DDS_RMI::VarnelRMI::VarnelRMIService_network_decommission_Reply_Handler* handler) override;
    DDS::Long network_add_nodes(DDS::String) override;
    void async_network_add_nodes(
        DDS::String mac_addr_list,
        DDS_RMI::VarnelRMI::VarnelRMIService_network_add_nodes_Reply_Handler* handler) override;
    DDS::Long network_remove_nodes(DDS::String) override;
    void async_network_remove_nodes(
        DDS::String mac_addr_list,
        DDS_RMI::VarnelRMI::VarnelRMIService_network_remove_nodes_Reply_Handler* handler) override;
    DDS::Long advertising(DDS::Boolean) override;
    void async_advertising(DDS::Boolean on,
                           DDS_RMI::VarnelRMI::VarnelRMIService_advertising_Reply_Handler* handler) override;
    DDS::Long network_get_node_list() override;
    void async_network_get_node_list(
        DDS_RMI::VarnelRMI::VarnelRMIService_network_get_node_list_Reply_Handler* handler) override;
    DDS::Long network_get_info() override;
    void async_network_get_info(
        DDS_RMI::VarnelRMI::VarnelRMIService_network_get_info_Reply_Handler* handler) override;
    DDS::Long node_get_config(DDS::String) override;
    void async_node_get_config(
        DDS::String mac_addr,
        DDS_RMI::VarnelRMI::VarnelRMIService_node_get_config_Reply_Handler* handler) override;
    DDS::Long node_set_config(DDS::String, DDS::String) override;
    void async_node_set_config(
        DDS::String mac_addr, DDS::String newCfg,
        DDS_RMI::VarnelRMI::VarnelRMIService_node_set_config_Reply_Handler* handler) override;
    DDS::Long node_get_data(DDS::String) override;
    void
    async_node_get_data(DDS::String mac_addr,
                        DDS_RMI::VarnelRMI::VarnelRMIService_node_get_data_Reply_Handler* handler) override;
    DDS::Long network_get_nodes_status(DDS::String) override;
    void async_network_get_nodes_status(
        DDS::String mac_addr_list,
        DDS_RMI::VarnelRMI::VarnelRMIService_network_get_nodes_status_Reply_Handler* handler) override;
    DDS::Long node_set_config_revert(DDS::String, DDS::String, DDS::Long) override;
    void async_node_set_config_revert(
        DDS::String mac_addr, DDS::String newCfg, DDS::Long duration,
        DDS_RMI::VarnelRMI::VarnelRMIService_node_set_config_revert_Reply_Handler* handler) override;
    DDS::Long test_node_create(DDS::String, DDS::Long) override;
    void async_test_node_create(
        DDS::String mac_addr, DDS::Long type,
        DDS_RMI::VarnelRMI::VarnelRMIService_test_node_create_Reply_Handler* handler) override;
    DDS::Long test_node_set_sensor_data(DDS::String, DDS::String) override;
    void async_test_node_set_sensor_data(
        DDS::String mac_addr, DDS::String newData,
        DDS_RMI::VarnelRMI::VarnelRMIService_test_node_set_sensor_data_Reply_Handler* handler) override;

private:
    void receive(const ReceivedCall& call);
    static DDS::Long refuse(const char* operation);

    bool m_keeps_handlers = true;
    std::mutex m_mutex;
    std::deque<ReceivedCall> m_calls; // guarded by m_mutex while methods may run
};

} // namespace conformance

#endif
