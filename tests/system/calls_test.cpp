// SPDX-License-Identifier: Apache-2.0
// Calls over HTTP go through host, plug-in and DDS to the server, and its answers come back into the host's
// log.

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "VarnelRMI_operations.h"
#include "processes.h"
#include "support/dds_domain.h"
#include "support/demo_calls.h"

namespace {

using system_test::count_lines;
using system_test::Host;
using system_test::start_server;
using test_support::ChildProcess;
using test_support::DdsDomain;
using test_support::demo_calls;
using test_support::DemoCall;
using testing::HasSubstr;
using testing::Optional;

TEST(DemoCalls, have_every_operation_of_the_interface_file)
{
    std::multiset<std::string> called;
    for (const DemoCall& call : demo_calls())
        called.insert(call.method);
#define NAME(op, ...) #op,
    const std::multiset<std::string> operations = {FOR_EVERY_OPERATION(NAME)};
#undef NAME

    EXPECT_EQ(called, operations) << "tools/demo_calls.txt and rmi/VarnelRMI.idl differ";
}

void expect_exchange(Host& host, const DemoCall& call)
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

    for (const DemoCall& call : demo_calls())
        expect_exchange(m_host, call);
}

TEST_F(Calls, with_text_where_a_number_is_meant_are_served_and_refusals_are_logged_as_they_are)
{
    m_host.wait_until_bound();

    expect_exchange(m_host, {"network_commission", "async_net_commission returns: -1",
                             R"({"mac_addr_list": "nonsense"})"});
    expect_exchange(m_host, {"network_get_node_list", "async_network_get_node_list returns: -4", ""});
}

TEST_F(Calls, that_fail_in_the_host_leave_no_line_and_the_next_is_served)
{
    m_host.wait_until_bound();

    EXPECT_THAT(m_host.call("test_node_create", R"({"mac_addr": "02:00:00:00:00:10", "type": "none"})"),
                HasSubstr("-32602"));
    EXPECT_THAT(m_host.call("no_such_method"), HasSubstr("-32601"));
    expect_exchange(m_host, {"network_get_info", "async_network_get_info returns: 0", ""});

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
