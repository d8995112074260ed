// SPDX-License-Identifier: Apache-2.0
#ifndef VARNEL_OPERATIONS_H
#define VARNEL_OPERATIONS_H

/// Repeats `row`, a macro, for each operation, in the order in which the host sees the methods: with the name
/// that method and remote operation share, and with what is written before the operation's reply. A macro,
/// because the names of classes and member functions are made of the operation's name.
// clang-format off
#define VARNEL_OPERATIONS(row) \
    row(network_commission, "async_net_commission returns: ") \
    row(network_decommission, "async_network_decommission returns: ") \
    row(network_get_info, "async_network_get_info returns: ") \
    row(network_add_nodes, "async_network_add_nodes returns: ") \
    row(network_remove_nodes, "async_network_remove_nodes returns: ") \
    row(advertising, "async_set_advertising returns: ") \
    row(node_get_data, "async_node_get_data returns: ") \
    row(node_set_config, "async_node_set_config returns: ") \
    row(node_get_config, "async_node_get_config returns: ") \
    row(network_get_node_list, "async_network_get_node_list returns: ") \
    row(test_node_create, "async_test_node_create returns: ") \
    row(test_node_set_sensor_data, "async_test_node_set_sensor_data returns: ") \
    row(network_get_nodes_status, "async_network_get_nodes_status returns: ") \
    row(node_set_config_revert, "async_node_set_config_revert returns: ")
// clang-format on

#endif
