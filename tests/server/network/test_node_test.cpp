// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <string>

#include "network_test.h"

using varnel::Failure;

class TestNode : public NetworkTest
{
protected:
    void SetUp() override { network.network_commission(a); }
};

TEST_F(TestNode, joins_the_network_that_is_commissioned)
{
    EXPECT_EQ(network.test_node_create(b, 1).value, 0);

    EXPECT_EQ(network.network_get_node_list().value, 2);
}

TEST_F(TestNode, has_no_readings_until_it_is_given_some)
{
    network.test_node_create(b, 1);
    EXPECT_EQ(network.node_get_data(b).value, 0);

    EXPECT_EQ(network.test_node_set_sensor_data(b, "temperature=19.5; battery=80").value, 2);

    EXPECT_EQ(network.node_get_data(b).value, 2);
    EXPECT_EQ(network.node_get_data(b).detail, "temperature=19.5; battery=80");
}

TEST_F(TestNode, is_reporting_from_its_first_readings_on)
{
    network.test_node_create(b, 1);
    EXPECT_EQ(network.network_get_nodes_status(b).value, 0);

    network.test_node_set_sensor_data(b, "temperature=19.5");

    EXPECT_EQ(network.network_get_nodes_status(b).value, 1);
}

TEST_F(TestNode, keeps_its_readings_when_malformed_ones_are_refused)
{
    network.test_node_create(b, 1);
    network.test_node_set_sensor_data(b, "temperature=19.5");

    EXPECT_EQ(network.test_node_set_sensor_data(b, "hot").value, failed(Failure::malformed_text));
    EXPECT_EQ(network.test_node_set_sensor_data(b, std::string(9999, 'x')).value,
              failed(Failure::text_too_long));

    EXPECT_EQ(network.node_get_data(b).detail, "temperature=19.5");
}

TEST_F(TestNode, is_not_created_where_a_node_is)
{
    network.test_node_create(b, 1);

    EXPECT_EQ(network.test_node_create(a, 1).value, failed(Failure::node_exists));
    EXPECT_EQ(network.test_node_create(b, 1).value, failed(Failure::node_exists));
}

TEST_F(TestNode, needs_a_well_formed_address)
{
    EXPECT_EQ(network.test_node_create("", 1).value, failed(Failure::malformed_address));
    EXPECT_EQ(network.test_node_set_sensor_data("0", "k=v").value, failed(Failure::malformed_address));
}

TEST_F(TestNode, can_be_removed_and_made_anew_without_readings)
{
    network.test_node_create(b, 1);
    network.test_node_set_sensor_data(b, "temperature=19.5");

    EXPECT_EQ(network.network_remove_nodes(b).value, 1);
    EXPECT_EQ(network.test_node_create(b, 1).value, 0);

    EXPECT_EQ(network.node_get_data(b).value, 0);
}

TEST_F(TestNode, alone_can_be_given_sensor_data)
{
    EXPECT_EQ(network.test_node_set_sensor_data(a, "k=v").value, failed(Failure::not_a_test_node));
    EXPECT_EQ(network.test_node_set_sensor_data(b, "k=v").value, failed(Failure::unknown_node));
}

class TypeCode : public TestNode, public testing::WithParamInterface<int>
{
};

TEST_P(TypeCode, is_taken_within_its_range)
{
    EXPECT_EQ(network.test_node_create(b, GetParam()).value, 0);
}

INSTANTIATE_TEST_SUITE_P(Codes, TypeCode, testing::Values(0, 1, 7, 8, 255));

class BadTypeCode : public TestNode, public testing::WithParamInterface<int>
{
};

TEST_P(BadTypeCode, is_refused)
{
    EXPECT_EQ(network.test_node_create(b, GetParam()).value, failed(Failure::bad_type));
    EXPECT_EQ(network.network_get_node_list().value, 1);
}

INSTANTIATE_TEST_SUITE_P(Codes, BadTypeCode, testing::Values(-1, 256, INT_MIN, INT_MAX));

using OrdinaryNode = TestNode;

TEST_F(OrdinaryNode, measures_by_itself_what_its_type_measures)
{
    varnel::SensorNetwork other(clock);
    other.start_commissioned({{*varnel::MacAddress::parse(a), 1}});

    EXPECT_EQ(other.node_get_data(a).value, 2);
    EXPECT_EQ(other.node_get_data(a).detail, "temperature=21.5; battery=100");
    EXPECT_EQ(network.node_get_data(a).detail, "battery=100");
}

TEST_F(OrdinaryNode, has_no_data_when_unknown_or_malformed)
{
    EXPECT_EQ(network.node_get_data(c).value, failed(Failure::unknown_node));
    EXPECT_EQ(network.node_get_data("here").value, failed(Failure::malformed_address));
}
