// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <string>

#include "contract/network_limits.h"
#include "network_test.h"

using varnel::Failure;
using varnel::SensorNetwork;

class NetworkNodes : public NetworkTest
{
protected:
    static constexpr const char* a_and_b = "00:00:00:00:00:0A, 00:00:00:00:00:0B";
};

TEST_F(NetworkNodes, are_those_that_the_network_is_commissioned_with)
{
    EXPECT_EQ(network.network_commission(a_and_b).value, 2);

    EXPECT_EQ(network.network_get_node_list().value, 2);
    EXPECT_EQ(network.network_get_node_list().detail, "00:00:00:00:00:0A, 00:00:00:00:00:0B");
}

TEST_F(NetworkNodes, are_added_to_those_that_are_there)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_add_nodes("00:00:00:00:00:0B;00:00:00:00:00:0C").value, 2);

    EXPECT_EQ(network.network_get_node_list().value, 3);
}

TEST_F(NetworkNodes, are_removed_from_those_that_are_there)
{
    network.network_commission("00000000000A 00000000000B 00000000000C");

    EXPECT_EQ(network.network_remove_nodes(a_and_b).value, 2);

    EXPECT_EQ(network.network_get_node_list().detail, c);
}

TEST_F(NetworkNodes, may_all_be_removed_without_ending_the_network)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_remove_nodes(a).value, 1);

    EXPECT_EQ(network.network_get_node_list().value, 0);
}

TEST_F(NetworkNodes, go_with_the_network_that_is_decommissioned)
{
    network.network_commission(a_and_b);

    EXPECT_EQ(network.network_decommission().value, 2);

    EXPECT_EQ(network.network_get_node_list().value, failed(Failure::not_commissioned));
    EXPECT_EQ(network.network_commission(c).value, 1);
}

class ListForm : public NetworkNodes, public testing::WithParamInterface<std::string>
{
};

TEST_P(ListForm, is_understood)
{
    EXPECT_EQ(network.network_commission(GetParam()).value, 2);
    EXPECT_EQ(network.network_get_node_list().detail, a_and_b);
}

INSTANTIATE_TEST_SUITE_P(Separators, ListForm,
                         testing::Values("00000000000a,00000000000b", "00000000000a;00000000000b",
                                         "00000000000a 00000000000b", "00000000000a\t00000000000b",
                                         "00000000000a\n00000000000b\n",
                                         " ,; 00000000000b ,;, 00000000000a ;",
                                         "00-00-00-00-00-0a,00:00:00:00:00:0B"));

TEST_F(NetworkNodes, count_once_when_a_list_names_them_twice_in_different_forms)
{
    EXPECT_EQ(network.network_commission("00:00:00:00:00:0a, 00-00-00-00-00-0A, 00000000000A").value, 1);
    EXPECT_EQ(network.network_get_nodes_status("00:00:00:00:00:0a 00000000000A").value, 1);
    EXPECT_EQ(network.network_remove_nodes("00:00:00:00:00:0a 00000000000A").value, 1);
}

using ListOperation = varnel::Reply (SensorNetwork::*)(std::string_view);

class EveryListOperation : public NetworkNodes, public testing::WithParamInterface<ListOperation>
{
protected:
    int reply_to(const std::string& list) { return (network.*GetParam())(list).value; }
};

TEST_P(EveryListOperation, refuses_a_list_without_addresses)
{
    EXPECT_EQ(reply_to(""), failed(Failure::empty_list));
    EXPECT_EQ(reply_to(" ,; "), failed(Failure::empty_list));
}

TEST_P(EveryListOperation, refuses_a_list_with_one_malformed_address)
{
    EXPECT_EQ(reply_to("00:00:00:00:00:0A, 00:00:00:00:00:G0"), failed(Failure::malformed_address));
}

TEST_P(EveryListOperation, refuses_a_list_that_is_too_long)
{
    const std::string longest(varnel::limits::address_list_length, ' ');

    EXPECT_EQ(reply_to(longest), failed(Failure::empty_list));
    EXPECT_EQ(reply_to(longest + ' '), failed(Failure::text_too_long));
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryListOperation,
                         testing::Values(&SensorNetwork::network_commission,
                                         &SensorNetwork::network_add_nodes,
                                         &SensorNetwork::network_remove_nodes,
                                         &SensorNetwork::network_get_nodes_status));

TEST_F(NetworkNodes, stay_as_they_are_when_the_network_is_commissioned_a_second_time)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_commission(b).value, failed(Failure::already_commissioned));

    EXPECT_EQ(network.network_get_node_list().detail, a);
}

TEST_F(NetworkNodes, are_added_all_or_none)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_add_nodes(a_and_b).value, failed(Failure::node_exists));

    EXPECT_EQ(network.network_get_node_list().detail, a);
}

TEST_F(NetworkNodes, are_removed_all_or_none)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_remove_nodes(a_and_b).value, failed(Failure::unknown_node));

    EXPECT_EQ(network.network_get_node_list().detail, a);
}

TEST_F(NetworkNodes, are_limited_in_number_when_commissioned)
{
    EXPECT_EQ(network.network_commission(many_addresses(varnel::limits::nodes + 1)).value,
              failed(Failure::too_many_nodes));

    EXPECT_EQ(network.network_get_info().value, 0);
}

TEST_F(NetworkNodes, are_limited_in_number_when_added)
{
    ASSERT_EQ(network.network_commission(many_addresses(varnel::limits::nodes)).value, 1024);

    EXPECT_EQ(network.network_add_nodes(a).value, failed(Failure::too_many_nodes));
    EXPECT_EQ(network.test_node_create(a, 0).value, failed(Failure::too_many_nodes));

    EXPECT_EQ(network.network_get_node_list().value, 1024);
}

TEST_F(NetworkNodes, need_a_commissioned_network_for_everything)
{
    const int not_commissioned = failed(Failure::not_commissioned);

    EXPECT_EQ(network.network_decommission().value, not_commissioned);
    EXPECT_EQ(network.network_add_nodes(a).value, not_commissioned);
    EXPECT_EQ(network.network_remove_nodes(a).value, not_commissioned);
    EXPECT_EQ(network.network_get_nodes_status(a).value, not_commissioned);
    EXPECT_EQ(network.network_get_node_list().value, not_commissioned);
    EXPECT_EQ(network.advertising(true).value, not_commissioned);
    EXPECT_EQ(network.node_get_config(a).value, not_commissioned);
    EXPECT_EQ(network.node_set_config(a, "k=v").value, not_commissioned);
    EXPECT_EQ(network.node_set_config_revert(a, "k=v", 1).value, not_commissioned);
    EXPECT_EQ(network.node_get_data(a).value, not_commissioned);
    EXPECT_EQ(network.test_node_create(a, 1).value, not_commissioned);
    EXPECT_EQ(network.test_node_set_sensor_data(a, "k=v").value, not_commissioned);
}

TEST_F(NetworkNodes, can_be_there_from_the_start_with_types)
{
    network.start_commissioned({{*varnel::MacAddress::parse(a), 1}, {*varnel::MacAddress::parse(b), 200}});

    EXPECT_EQ(network.network_get_nodes_status(a_and_b).detail,
              "00:00:00:00:00:0A temperature node reporting, 00:00:00:00:00:0B type 200 node reporting");
}

TEST_F(NetworkNodes, are_counted_by_status_as_reporting)
{
    network.network_commission(a);
    network.test_node_create(b, 2);

    const varnel::Reply reply = network.network_get_nodes_status(a_and_b);

    EXPECT_EQ(reply.value, 1);
    EXPECT_EQ(reply.detail, "00:00:00:00:00:0A generic node reporting, "
                            "00:00:00:00:00:0B humidity test node silent");
}

TEST_F(NetworkNodes, have_no_status_when_unknown)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_get_nodes_status(a_and_b).value, failed(Failure::unknown_node));
}

using NetworkInfo = NetworkTest;

TEST_F(NetworkInfo, is_zero_for_a_network_that_is_not_commissioned)
{
    EXPECT_EQ(network.network_get_info().value, 0);
}

TEST_F(NetworkInfo, tells_that_the_network_is_commissioned)
{
    network.network_commission(a);

    EXPECT_EQ(network.network_get_info().value, SensorNetwork::info_commissioned);
    EXPECT_EQ(network.network_get_info().detail, "commissioned, 1 nodes, advertising off");
}

TEST_F(NetworkInfo, tells_of_advertising)
{
    network.network_commission(a);

    EXPECT_EQ(network.advertising(true).value, 0);
    EXPECT_EQ(network.network_get_info().value,
              SensorNetwork::info_commissioned | SensorNetwork::info_advertising);

    EXPECT_EQ(network.advertising(false).value, 0);
    EXPECT_EQ(network.network_get_info().value, SensorNetwork::info_commissioned);
}

TEST_F(NetworkInfo, tells_of_test_nodes)
{
    network.network_commission(a);
    network.test_node_create(b, 3);

    EXPECT_EQ(network.network_get_info().value,
              SensorNetwork::info_commissioned | SensorNetwork::info_has_test_nodes);
}

TEST_F(NetworkInfo, tells_of_a_pending_revert_until_its_time)
{
    network.network_commission(a);
    network.node_set_config_revert(a, "k=v", 5);
    EXPECT_EQ(network.network_get_info().value,
              SensorNetwork::info_commissioned | SensorNetwork::info_revert_pending);

    clock.advance(std::chrono::seconds(5));

    EXPECT_EQ(network.network_get_info().value, SensorNetwork::info_commissioned);
}

TEST_F(NetworkInfo, forgets_advertising_with_the_network)
{
    network.network_commission(a);
    network.advertising(true);
    network.network_decommission();

    network.network_commission(a);

    EXPECT_EQ(network.network_get_info().value, SensorNetwork::info_commissioned);
}
