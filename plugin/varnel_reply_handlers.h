// SPDX-License-Identifier: Apache-2.0
#ifndef VARNEL_REPLY_HANDLERS_H
#define VARNEL_REPLY_HANDLERS_H

#include <iostream>

#include "VarnelRMI_InterfaceProxy.h"

// The receivers of the remote operations' answers. Each one serves one call and only logs the answer, on a
// thread of the RMI runtime.

inline void logReply(const char* text, DDS::Long result)
{
    std::cout << text << result << std::endl;
}

// A macro, because the names of the class, its base and its hook are all made of the operation's name.
#define VARNEL_REPLY_HANDLER(op, text)                                                                       \
    class MY_##op##_handler : public virtual DDS_RMI::VarnelRMI::VarnelRMIService_##op##_Reply_Handler       \
    {                                                                                                        \
    public:                                                                                                  \
        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \
    }

VARNEL_REPLY_HANDLER(network_get_info, "async_network_get_info returns: ");
VARNEL_REPLY_HANDLER(network_get_node_list, "async_network_get_node_list returns: ");
VARNEL_REPLY_HANDLER(network_decommission, "async_network_decommission returns: ");
VARNEL_REPLY_HANDLER(network_commission, "async_net_commission returns: ");
VARNEL_REPLY_HANDLER(network_add_nodes, "async_network_add_nodes returns: ");
VARNEL_REPLY_HANDLER(network_remove_nodes, "async_network_remove_nodes returns: ");
VARNEL_REPLY_HANDLER(network_get_nodes_status, "async_network_get_nodes_status returns: ");
VARNEL_REPLY_HANDLER(advertising, "async_set_advertising returns: ");
VARNEL_REPLY_HANDLER(node_get_config, "async_node_get_config returns: ");
VARNEL_REPLY_HANDLER(node_set_config, "async_node_set_config returns: ");
VARNEL_REPLY_HANDLER(node_set_config_revert, "async_node_set_config_revert returns: ");
VARNEL_REPLY_HANDLER(node_get_data, "async_node_get_data returns: ");
VARNEL_REPLY_HANDLER(test_node_create, "async_test_node_create returns: ");
VARNEL_REPLY_HANDLER(test_node_set_sensor_data, "async_test_node_set_sensor_data returns: ");

#undef VARNEL_REPLY_HANDLER

#endif
