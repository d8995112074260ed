// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "rmi_test.h"

namespace {

using drill::Client;
using drill::Proxy;
using drill::Server;
using test_support::ChildProcess;

class HostilePeer : public drill::RmiTest
{
protected:
    static void expect_published(ChildProcess& intruder)
    {
        EXPECT_TRUE(intruder.wait_for_line("published")) << intruder.error_output();
        intruder.close_input();
        EXPECT_EQ(intruder.wait_for_exit(), 0) << intruder.error_output();
    }
};

TEST_F(HostilePeer, disturbs_neither_server_nor_clients)
{
    Server server;
    Client client({"load", "--caller", "1", "--pause", "500"});
    ASSERT_TRUE(client.wait_for_line("bound"));
    ChildProcess intruder({DRILL_INTRUDER});
    const std::string undecodable = "dropped a sample that cannot be decoded";

    expect_published(intruder);

    EXPECT_EQ(find_proxy()->echo(7), 7);
    client.close_input();
    client.expect_success();
    EXPECT_NE(client.output().find(" wrong=0 given_up=0 timeouts=0 not_found=0 "), std::string::npos)
        << client.output();
    EXPECT_TRUE(server.process().wait_for_error_line(
        "dropped a request to service 'drill' that is for another server or from no known client"));
    EXPECT_TRUE(client.wait_for_error_line(
        "dropped a reply of service 'drill' to a request that is not outstanding"));
    EXPECT_NE(server.process().error_output().find(undecodable), std::string::npos);
    EXPECT_NE(client.error_output().find(undecodable), std::string::npos);
}

TEST_F(HostilePeer, that_claims_to_be_the_server_does_not_keep_clients_from_it)
{
    const Server server;
    const Proxy proxy = find_proxy();
    ChildProcess intruder({DRILL_INTRUDER, "--samples", "0"});
    ASSERT_TRUE(intruder.wait_for_line("announced")) << intruder.error_output();

    EXPECT_EQ(proxy->echo(7), 7);
    EXPECT_EQ(find_proxy()->echo(8), 8);

    expect_published(intruder);
    EXPECT_EQ(proxy->echo(9), 9);
}

} // namespace
