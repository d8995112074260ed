// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_FOR_EVERY_OPERATION_H
#define TESTS_CONFORMANCE_FOR_EVERY_OPERATION_H

/// Repeats `action`, a macro, for the name of each operation, where names of classes and functions are made
/// of it.
#define FOR_EVERY_OPERATION(action)                                                                          \
    action(network_get_info) action(network_get_node_list) action(network_decommission)                      \
        action(network_commission) action(network_add_nodes) action(network_remove_nodes)                    \
            action(network_get_nodes_status) action(advertising) action(node_get_config)                     \
                action(node_set_config) action(node_set_config_revert) action(node_get_data)                 \
                    action(test_node_create) action(test_node_set_sensor_data)

#endif
