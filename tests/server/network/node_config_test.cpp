// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <climits>
#include <string>

#include "contract/network_limits.h"
#include "network_test.h"

using std::chrono::seconds;
using varnel::Failure;

class NodeConfig : public NetworkTest
{
protected:
    void SetUp() override { network.network_commission("00000000000A 00000000000B"); }

    std::string config_of(const char* node) { return network.node_get_config(node).detail; }
};

TEST_F(NodeConfig, is_empty_at_first)
{
    EXPECT_EQ(network.node_get_config(a).value, 0);
    EXPECT_EQ(config_of(a), "");
}

TEST_F(NodeConfig, is_read_back_as_it_was_set)
{
    EXPECT_EQ(network.node_set_config(a, "interval=30,power=low").value, 2);

    EXPECT_EQ(network.node_get_config(a).value, 2);
    EXPECT_EQ(config_of(a), "interval=30; power=low");
}

TEST_F(NodeConfig, is_replaced_as_a_whole)
{
    network.node_set_config(a, "interval=30; power=low");

    EXPECT_EQ(network.node_set_config(a, "mode=fast").value, 1);

    EXPECT_EQ(config_of(a), "mode=fast");
}

TEST_F(NodeConfig, belongs_to_one_node)
{
    network.node_set_config(a, "mode=fast");

    EXPECT_EQ(config_of(b), "");
}

TEST_F(NodeConfig, is_found_by_any_form_of_the_address)
{
    network.node_set_config("00-00-00-00-00-0a", "mode=fast");

    EXPECT_EQ(config_of("00000000000A"), "mode=fast");
}

TEST_F(NodeConfig, stays_when_a_malformed_one_is_refused)
{
    network.node_set_config(a, "mode=fast");

    EXPECT_EQ(network.node_set_config(a, "mode").value, failed(Failure::malformed_text));
    EXPECT_EQ(network.node_set_config(a, "").value, failed(Failure::malformed_text));
    EXPECT_EQ(network.node_set_config(a, std::string(5000, 'x')).value, failed(Failure::text_too_long));

    EXPECT_EQ(config_of(a), "mode=fast");
}

TEST_F(NodeConfig, needs_a_node_that_the_network_has)
{
    EXPECT_EQ(network.node_get_config(c).value, failed(Failure::unknown_node));
    EXPECT_EQ(network.node_set_config(c, "k=v").value, failed(Failure::unknown_node));
    EXPECT_EQ(network.node_set_config_revert(c, "k=v", 1).value, failed(Failure::unknown_node));
}

TEST_F(NodeConfig, needs_a_well_formed_address)
{
    EXPECT_EQ(network.node_get_config("").value, failed(Failure::malformed_address));
    EXPECT_EQ(network.node_set_config("node", "k=v").value, failed(Failure::malformed_address));
    EXPECT_EQ(network.node_set_config_revert("00:0A", "k=v", 1).value, failed(Failure::malformed_address));
}

TEST_F(NodeConfig, reverts_when_its_duration_is_over_and_not_before)
{
    network.node_set_config(a, "mode=slow");

    EXPECT_EQ(network.node_set_config_revert(a, "mode=fast; power=high", 10).value, 2);
    EXPECT_EQ(config_of(a), "mode=fast; power=high");

    clock.advance(seconds(9));
    EXPECT_EQ(config_of(a), "mode=fast; power=high");

    clock.advance(seconds(1));
    EXPECT_EQ(config_of(a), "mode=slow");
}

TEST_F(NodeConfig, reverts_to_none_when_none_was_set)
{
    network.node_set_config_revert(a, "mode=fast", 10);

    clock.advance(seconds(10));

    EXPECT_EQ(network.node_get_config(a).value, 0);
}

TEST_F(NodeConfig, that_is_set_for_good_meanwhile_does_not_revert)
{
    network.node_set_config(a, "mode=slow");
    network.node_set_config_revert(a, "mode=fast", 10);

    network.node_set_config(a, "mode=fixed");
    clock.advance(seconds(20));

    EXPECT_EQ(config_of(a), "mode=fixed");
}

TEST_F(NodeConfig, reverts_to_the_one_that_was_set_for_good_after_a_second_temporary_one)
{
    network.node_set_config(a, "mode=slow");
    network.node_set_config_revert(a, "mode=fast", 10);
    clock.advance(seconds(8));

    network.node_set_config_revert(a, "mode=faster", 10);
    clock.advance(seconds(9));
    EXPECT_EQ(config_of(a), "mode=faster");

    clock.advance(seconds(1));
    EXPECT_EQ(config_of(a), "mode=slow");
}

TEST_F(NodeConfig, keeps_its_pending_revert_when_a_later_change_is_refused)
{
    network.node_set_config(a, "mode=slow");
    network.node_set_config_revert(a, "mode=fast", 10);

    network.node_set_config(a, "malformed");
    network.node_set_config_revert(a, "mode=faster", 0);

    EXPECT_EQ(config_of(a), "mode=fast");
    clock.advance(seconds(10));
    EXPECT_EQ(config_of(a), "mode=slow");
}

TEST_F(NodeConfig, does_not_revert_on_a_node_that_came_back_after_removal)
{
    network.node_set_config_revert(a, "mode=fast", 10);
    network.network_remove_nodes(a);
    network.network_add_nodes(a);
    network.node_set_config(a, "mode=new");

    clock.advance(seconds(10));

    EXPECT_EQ(config_of(a), "mode=new");
}

class BadDuration : public NodeConfig, public testing::WithParamInterface<int>
{
};

TEST_P(BadDuration, is_refused_and_changes_nothing)
{
    EXPECT_EQ(network.node_set_config_revert(a, "mode=fast", GetParam()).value,
              failed(Failure::bad_duration));

    EXPECT_EQ(config_of(a), "");
}

INSTANTIATE_TEST_SUITE_P(Seconds, BadDuration, testing::Values(0, -1, INT_MIN, 30 * 24 * 3600 + 1, INT_MAX));

TEST_F(NodeConfig, may_stay_for_the_longest_duration)
{
    EXPECT_EQ(network.node_set_config_revert(a, "mode=fast", 30 * 24 * 3600).value, 1);
}

TEST_F(NodeConfig, refuses_a_malformed_temporary_one)
{
    EXPECT_EQ(network.node_set_config_revert(a, "=", 5).value, failed(Failure::malformed_text));
    EXPECT_EQ(network.node_set_config_revert(a, std::string(3000, 'x'), 5).value,
              failed(Failure::text_too_long));
}
