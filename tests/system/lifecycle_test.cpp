// SPDX-License-Identifier: Apache-2.0
// Host and server start, stop and come back in any order.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <string>

#include "processes.h"
#include "support/dds_domain.h"

namespace {

using system_test::Host;
using system_test::start_server;
using test_support::ChildProcess;
using test_support::DdsDomain;
using testing::HasSubstr;
using testing::Optional;
using namespace std::chrono_literals;

constexpr const char* info_reply = "async_network_get_info returns: 0";

/// Calls until a reply comes: requests to a server that has gone are not repeated by themselves.
bool is_answered_again(Host& host)
{
    const auto deadline = std::chrono::steady_clock::now() + test_support::event_deadline;
    while (std::chrono::steady_clock::now() < deadline) {
        host.call("network_get_info");
        if (host.process().wait_for_line(info_reply, 500ms))
            return true;
    }
    return false;
}

TEST(Lifecycle, a_host_without_a_server_refuses_calls_and_serves_them_once_one_has_come)
{
    const DdsDomain domain;
    Host host({"--discovery-timeout", "1"});

    EXPECT_EQ(host.next_line("VarnelRPCHandler isBound:"), "VarnelRPCHandler isBound:0");
    EXPECT_THAT(host.call("network_get_info"), HasSubstr("Service not available"));

    const ChildProcess server = start_server();
    host.wait_until_bound();
    EXPECT_THAT(host.call("network_get_info"), HasSubstr("\"result\":0"));
    EXPECT_EQ(host.next_line("async_"), info_reply);
}

TEST(Lifecycle, a_server_that_was_stopped_is_found_again)
{
    const DdsDomain domain;
    ChildProcess first = start_server();
    Host host;
    host.wait_until_bound();
    ASSERT_TRUE(is_answered_again(host));

    EXPECT_THAT(first.terminate(), Optional(0));
    const ChildProcess second = start_server();

    EXPECT_TRUE(is_answered_again(host));
}

/// Asks until the health report contains the text.
bool comes_to_say(const Host& host, const std::string& text)
{
    const auto deadline = std::chrono::steady_clock::now() + test_support::event_deadline;
    while (std::chrono::steady_clock::now() < deadline)
        if (host.health().find(text) != std::string::npos)
            return true;
    return false;
}

TEST(Lifecycle, a_host_tells_whether_the_server_of_a_bound_plug_in_can_be_reached)
{
    const DdsDomain domain;
    ChildProcess server = start_server();
    Host host;
    host.wait_until_bound();
    EXPECT_THAT(host.health(), HasSubstr(R"("services":[{"name":"VarnelDE_Server","reachable":true}])"));

    server.signal(SIGSTOP);
    EXPECT_TRUE(comes_to_say(host, R"({"name":"VarnelDE_Server","reachable":false})")) << host.health();

    server.signal(SIGCONT);
    EXPECT_TRUE(comes_to_say(host, R"({"name":"VarnelDE_Server","reachable":true})")) << host.health();
}

TEST(Lifecycle, a_server_that_was_killed_is_found_again)
{
    const DdsDomain domain;
    ChildProcess first = start_server();
    Host host;
    host.wait_until_bound();
    ASSERT_TRUE(is_answered_again(host));

    first.signal(SIGKILL);
    ASSERT_THAT(first.wait_for_exit(), Optional(128 + SIGKILL));
    const ChildProcess second = start_server();

    EXPECT_TRUE(is_answered_again(host));
}

TEST(Lifecycle, a_stopped_host_takes_the_handler_down_in_order)
{
    const DdsDomain domain;
    const ChildProcess server = start_server();
    Host host;
    host.wait_until_bound();

    EXPECT_THAT(host.process().terminate(), Optional(0));

    EXPECT_THAT(host.process().output(), HasSubstr("VarnelRPCHandler destructor\n"
                                                   "KX_DDS_RMI_PROXY destroy\n"
                                                   "VarnelInterface destructor\n"));
}

TEST(Lifecycle, a_host_stops_while_a_reply_is_outstanding)
{
    const DdsDomain domain;
    const ChildProcess server = start_server({"--delay", "60000"});
    Host host;
    host.wait_until_bound();
    host.call("network_get_info");
    ASSERT_EQ(host.next_line("CALL RPC "), "CALL RPC network_get_info");

    EXPECT_THAT(host.process().terminate(30s), Optional(0));

    EXPECT_THAT(host.process().output(), testing::Not(HasSubstr("returns: ")));
}

} // namespace
