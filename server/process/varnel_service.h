// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_VARNEL_SERVICE_H
#define SERVER_PROCESS_VARNEL_SERVICE_H

#include <string>
#include <vector>

#include "VarnelRMI_Interface.h"

#include "network/sensor_network.h"
#include "process/call_log.h"
#include "process/reply_delay.h"

namespace varnel {

/// Offers a sensor network as the remote service: each call is passed on, logged and, after the delay,
/// answered. Any thread; nothing is thrown, because a failure of the server too is a reply.
class VarnelService : public DDS_RMI::VarnelRMI::VarnelRMIServiceInterface
{
public:
    /// All three must outlive the service.
    VarnelService(SensorNetwork& network, CallLog& log, ReplyDelay& delay);

    DDS::Long network_commission(DDS::String mac_addr_list) override;
    DDS::Long network_decommission() override;
    DDS::Long network_add_nodes(DDS::String mac_addr_list) override;
    DDS::Long network_remove_nodes(DDS::String mac_addr_list) override;
    DDS::Long advertising(DDS::Boolean on) override;
    DDS::Long network_get_node_list() override;
    DDS::Long network_get_info() override;
    DDS::Long node_get_config(DDS::String mac_addr) override;
    DDS::Long node_set_config(DDS::String mac_addr, DDS::String new_config) override;
    DDS::Long node_get_data(DDS::String mac_addr) override;
    DDS::Long network_get_nodes_status(DDS::String mac_addr_list) override;
    DDS::Long node_set_config_revert(DDS::String mac_addr, DDS::String new_config,
                                     DDS::Long duration) override;
    DDS::Long test_node_create(DDS::String mac_addr, DDS::Long type) override;
    DDS::Long test_node_set_sensor_data(DDS::String mac_addr, DDS::String new_data) override;

private:
    template <class... Parameters, class... Arguments>
    DDS::Long answer(const char* name, Reply (SensorNetwork::*operation)(Parameters...),
                     Arguments... arguments);

    SensorNetwork& m_network;
    CallLog& m_log;
    ReplyDelay& m_delay;
};

} // namespace varnel

#endif
