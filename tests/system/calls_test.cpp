// SPDX-License-Identifier: Apache-2.0
// Calls over HTTP go through host, plug-in and DDS to the server, and its answers come back into the host's
// log.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "processes.h"
#include "support/dds_domain.h"

namespace {

using system_test::count_lines;
using system_test::Host;
using system_test::start_server;
using test_support::ChildProcess;
using test_support::DdsDomain;
using testing::HasSubstr;
using testing::Optional;

struct Call
{
    std::string method;
    std::string params;
    std::string reply_line;
};

/// Every method once; what a call leaves behind, the later ones find.
const std::vector<Call> every_method = {
    {"network_commission", R"({"mac_addr_list": "02:00:00:00:00:01, 02:00:00:00:00:02"})",
     "async_net_commission returns: 2"},
    {"network_get_info", "", "async_network_get_info returns: 1"},
    {"advertising", R"({"on": "true"})", "async_set_advertising returns: 0"},
    {"test_node_create", R"({"mac_addr": "02:00:00:00:00:10", "type": "1"})",
     "async_test_node_create returns: 0"},
    {"test_node_set_sensor_data", R"({"mac_addr": "02:00:00:00:00:10", "newData": "a=1; b=2; c=3"})",
     "async_test_node_set_sensor_data returns: 3"},
    {"node_get_data", R"({"mac_addr": "02:00:00:00:00:10"})", "async_node_get_data returns: 3"},
    {"network_add_nodes", R"({"mac_addr_list": "02:00:00:00:00:03"})", "async_network_add_nodes returns: 1"},
    {"network_get_node_list", "", "async_network_get_node_list returns: 4"},
    {"network_get_nodes_status", R"({"mac_addr_list": "02:00:00:00:00:01 02:00:00:00:00:10"})",
     "async_network_get_nodes_status returns: 2"},
    {"node_set_config", R"({"mac_addr": "02:00:00:00:00:01", "newCfg": "interval=60; mode=active"})",
     "async_node_set_config returns: 2"},
    {"node_get_config", R"({"mac_addr": "02:00:00:00:00:01"})", "async_node_get_config returns: 2"},
    {"node_set_config_revert",
     R"({"mac_addr": "02:00:00:00:00:01", "newCfg": "interval=1", "duration": 3600})",
     "async_node_set_config_revert returns: 1"},
    {"network_remove_nodes", R"({"mac_addr_list": "02:00:00:00:00:02"})",
     "async_network_remove_nodes returns: 1"},
    {"network_decommission", "", "async_network_decommission returns: 3"},
};

void expect_exchange(Host& host, const Call& call)
{
    SCOPED_TRACE(call.method);
    EXPECT_THAT(host.call(call.method, call.params), HasSubstr("\"result\":0"));
    EXPECT_EQ(host.next_line("CALL RPC "), "CALL RPC " + call.method);
    EXPECT_EQ(host.next_line("returns: "), call.reply_line);
}

class Calls : public testing::Test
{
protected:
    DdsDomain m_domain;
    ChildProcess m_server = start_server();
    Host m_host;
};

TEST_F(Calls, of_every_method_are_logged_and_answered)
{
    m_host.wait_until_bound();

    for (const Call& call : every_method)
        expect_exchange(m_host, call);
}

TEST_F(Calls, with_text_where_a_number_is_meant_are_served_and_refusals_are_logged_as_they_are)
{
    m_host.wait_until_bound();

    expect_exchange(m_host, {"network_commission", R"({"mac_addr_list": "nonsense"})",
                             "async_net_commission returns: -1"});
    expect_exchange(m_host, {"network_get_node_list", "", "async_network_get_node_list returns: -4"});
}

TEST_F(Calls, that_fail_in_the_host_leave_no_line_and_the_next_is_served)
{
    m_host.wait_until_bound();

    EXPECT_THAT(m_host.call("test_node_create", R"({"mac_addr": "02:00:00:00:00:10", "type": "none"})"),
                HasSubstr("-32602"));
    EXPECT_THAT(m_host.call("no_such_method"), HasSubstr("-32601"));
    expect_exchange(m_host, {"network_get_info", "", "async_network_get_info returns: 0"});

    EXPECT_EQ(count_lines(m_host.process().output(), "CALL RPC "), 1);
}

TEST_F(Calls, of_two_hosts_get_their_own_answers)
{
    constexpr int rounds = 10;
    Host other;
    m_host.wait_until_bound();
    other.wait_until_bound();

    for (int round = 0; round < rounds; ++round) {
        m_host.call("network_get_info");
        other.call("network_get_node_list");
    }
    for (int round = 0; round < rounds; ++round) {
        EXPECT_EQ(m_host.next_line("returns: "), "async_network_get_info returns: 0");
        EXPECT_EQ(other.next_line("returns: "), "async_network_get_node_list returns: -4");
    }
    ASSERT_THAT(m_host.process().terminate(), Optional(0));
    ASSERT_THAT(other.process().terminate(), Optional(0));

    EXPECT_EQ(count_lines(m_host.process().output(), "async_"), rounds);
    EXPECT_EQ(count_lines(other.process().output(), "async_"), rounds);
}

} // namespace
