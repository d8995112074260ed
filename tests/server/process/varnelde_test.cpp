// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/signal.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "VarnelRMI_InterfaceProxy.h"
#include "child_process.h"
#include "dds_domain.h"
#include "ddsrmi.h"

namespace rmi = org::opensplice::DDS_RMI;
using Proxy = DDS_RMI::VarnelRMI::VarnelRMIServiceInterfaceProxy;
using test_support::ChildProcess;
using testing::AnyOf;
using testing::Eq;
using testing::HasSubstr;

namespace {

/// The program, in a DDS domain of the test's own.
class Varnelde : public testing::Test
{
protected:
    static ChildProcess start(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), VARNELDE);
        return ChildProcess(arguments);
    }

    static ChildProcess start_ready(const std::vector<std::string>& arguments = {})
    {
        ChildProcess server = start(arguments);
        EXPECT_TRUE(server.wait_for_line("ready: ")) << server.error_output();
        return server;
    }

    const test_support::DdsDomain domain;
};

/// A client of it in the test's process.
class VarneldeCalls : public Varnelde
{
protected:
    void SetUp() override
    {
        const char* arguments[] = {"client", "--RMIClientThreadingModel=MT",
                                   "--RMIServiceDiscoveryTimeout=60"};
        ASSERT_TRUE(runtime->start(3, arguments));
    }

    void TearDown() override { runtime->stop(); }

    static rmi::shared_ptr<Proxy> connect(const std::string& service = "VarnelDE_Server")
    {
        rmi::shared_ptr<Proxy> proxy;
        EXPECT_TRUE(rmi::DDS_Service::getServerProxy<Proxy>(service, 1, proxy));
        return proxy;
    }

    static DDS::String text(const std::string& value) { return DDS::string_dup(value.c_str()); }

    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
};

} // namespace

TEST_F(Varnelde, says_that_it_is_ready_once)
{
    ChildProcess server = start();

    EXPECT_EQ(server.wait_for_line("ready"), "ready: service VarnelDE_Server, instance 1");
    server.terminate();

    EXPECT_EQ(server.output(), "ready: service VarnelDE_Server, instance 1\n");
}

TEST_F(Varnelde, names_the_service_that_it_was_told_to_offer)
{
    ChildProcess server = start({"--service", "Other", "--instance", "12"});

    EXPECT_EQ(server.wait_for_line("ready"), "ready: service Other, instance 12");
}

TEST_F(Varnelde, ends_cleanly_on_sigterm)
{
    ChildProcess server = start_ready();

    EXPECT_EQ(server.terminate(), 0);
    // The RMI layer may say how DDS is protected; nothing else belongs there.
    EXPECT_THAT(server.error_output(), testing::MatchesRegex("(ddsrmi: DDS is [^\n]*\n)?"));
}

TEST_F(Varnelde, ends_cleanly_on_sigint)
{
    ChildProcess server = start_ready();

    server.signal(SIGINT);

    EXPECT_EQ(server.wait_for_exit(), 0);
}

TEST_F(Varnelde, ends_cleanly_with_several_threads)
{
    ChildProcess server = start_ready({"--threads", "4"});

    EXPECT_EQ(server.terminate(), 0);
}

/// At whatever point of its start the signal comes, the program ends of itself: by the signal while it is
/// being loaded, cleanly afterwards.
TEST_F(Varnelde, ends_when_it_is_told_to_while_it_starts)
{
    for (int pause_ms = 0; pause_ms <= 60; pause_ms += 4) {
        ChildProcess server = start();
        std::this_thread::sleep_for(std::chrono::milliseconds(pause_ms));

        EXPECT_THAT(server.terminate(), AnyOf(Eq(0), Eq(128 + SIGTERM))) << "after " << pause_ms << " ms";
    }
}

TEST_F(Varnelde, exits_with_2_on_a_bad_command_line)
{
    ChildProcess server = start({"--threads", "none"});

    EXPECT_EQ(server.wait_for_exit(), 2);
    EXPECT_THAT(server.error_output(), HasSubstr("--threads"));
    EXPECT_EQ(server.output(), "");
}

TEST_F(Varnelde, exits_with_0_after_its_help)
{
    ChildProcess server = start({"--help"});

    EXPECT_EQ(server.wait_for_exit(), 0);
    EXPECT_THAT(server.output(), HasSubstr("--instance"));
}

TEST_F(Varnelde, exits_with_1_when_dds_cannot_be_used)
{
    ChildProcess server(
        {VARNELDE},
        {{"CYCLONEDDS_URI",
          "<General><Interfaces><NetworkInterface name='no-such-interface'/></Interfaces></General>"}});

    EXPECT_EQ(server.wait_for_exit(), 1);
    EXPECT_THAT(server.error_output(), HasSubstr("varnelde: the DDS RMI runtime does not start"));
    EXPECT_EQ(server.output(), "");
}

TEST_F(VarneldeCalls, are_answered_and_logged)
{
    ChildProcess server = start_ready();
    const rmi::shared_ptr<Proxy> proxy = connect();

    EXPECT_EQ(proxy->network_get_info(), 0);
    EXPECT_EQ(server.wait_for_line("network_get_info"),
              "network_get_info() = 0 \"not commissioned, 0 nodes, advertising off\"");

    EXPECT_EQ(proxy->network_commission(text("00:00:00:00:00:0a; 00-00-00-00-00-0B")), 2);
    EXPECT_EQ(server.wait_for_line("network_commission"),
              "network_commission(\"00:00:00:00:00:0a; 00-00-00-00-00-0B\") = 2");

    EXPECT_EQ(proxy->node_get_config(text("nowhere")), -1);
    EXPECT_EQ(server.wait_for_line("node_get_config"),
              "node_get_config(\"nowhere\") = -1 (malformed_address)");
}

TEST_F(VarneldeCalls, reach_each_of_the_operations)
{
    ChildProcess server = start_ready();
    const rmi::shared_ptr<Proxy> proxy = connect();
    const std::string a = "00000000000A";
    const std::string t = "00000000000B";

    EXPECT_EQ(proxy->network_commission(text(a)), 1);
    EXPECT_EQ(proxy->network_add_nodes(text("00000000000C,00000000000D")), 2);
    EXPECT_EQ(proxy->network_remove_nodes(text("00000000000C")), 1);
    EXPECT_EQ(proxy->advertising(1), 0);
    EXPECT_EQ(proxy->test_node_create(text(t), 3), 0);
    EXPECT_EQ(proxy->network_get_node_list(), 3);
    EXPECT_EQ(proxy->network_get_info(), 1 + 2 + 4);
    EXPECT_EQ(proxy->node_set_config(text(a), text("p=1;q=2;r=3")), 3);
    EXPECT_EQ(proxy->node_get_config(text(a)), 3);
    EXPECT_EQ(proxy->node_set_config_revert(text(a), text("p=1"), 3600), 1);
    EXPECT_EQ(proxy->network_get_info(), 1 + 2 + 4 + 8);
    EXPECT_EQ(proxy->test_node_set_sensor_data(text(t), text("pressure=990;battery=3")), 2);
    EXPECT_EQ(proxy->node_get_data(text(t)), 2);
    EXPECT_EQ(proxy->network_get_nodes_status(text(a + " " + t)), 2);
    EXPECT_EQ(proxy->advertising(0), 0);
    EXPECT_EQ(proxy->network_decommission(), 3);
}

TEST_F(VarneldeCalls, find_the_nodes_that_it_was_started_with)
{
    ChildProcess server = start_ready({"--node", "00:00:00:00:00:0A=1", "--node", "00:00:00:00:00:0B"});

    EXPECT_EQ(connect()->network_get_node_list(), 2);
}

TEST_F(VarneldeCalls, make_a_configuration_that_reverts_by_itself)
{
    ChildProcess server = start_ready({"--node", "00:00:00:00:00:0A"});
    const rmi::shared_ptr<Proxy> proxy = connect();
    ASSERT_EQ(proxy->node_set_config(text("00000000000A"), text("mode=slow")), 1);

    ASSERT_EQ(proxy->node_set_config_revert(text("00000000000A"), text("mode=fast; power=high"), 1), 2);

    EXPECT_EQ(server.wait_for_line("reverted"),
              "configuration of 00:00:00:00:00:0A reverted to \"mode=slow\"");
    EXPECT_EQ(proxy->node_get_config(text("00000000000A")), 1);
}

TEST_F(VarneldeCalls, with_hostile_texts_are_shown_shortened_on_one_line)
{
    ChildProcess server = start_ready({"--commissioned"});
    const rmi::shared_ptr<Proxy> proxy = connect();

    EXPECT_EQ(proxy->network_add_nodes(text("\n\x1b[2J\"" + std::string(200'000, 'A'))), -7);

    const auto line = server.wait_for_line("network_add_nodes");
    ASSERT_TRUE(line);
    EXPECT_THAT(*line, HasSubstr(R"(("\x0a\x1b[2J\"AAAA)"));
    EXPECT_THAT(*line, HasSubstr("... (200006 bytes)) = -7 (text_too_long)"));
}

TEST_F(VarneldeCalls, are_answered_after_the_delay)
{
    ChildProcess server = start_ready({"--delay", "300"});
    const rmi::shared_ptr<Proxy> proxy = connect();
    const auto begin = std::chrono::steady_clock::now();

    EXPECT_EQ(proxy->network_get_info(), 0);

    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
}

TEST_F(VarneldeCalls, that_are_being_delayed_do_not_keep_it_from_ending)
{
    ChildProcess server = start_ready({"--delay", "600000", "--threads", "2"});
    const rmi::shared_ptr<Proxy> proxy = connect();
    proxy->setTimeout(60'000);
    std::thread caller([&proxy] {
        try {
            proxy->network_get_info();
        } catch (const rmi::SystemException&) {
            // The server may be gone before its reply has arrived.
        }
    });
    EXPECT_TRUE(server.wait_for_line("network_get_info"));

    EXPECT_EQ(server.terminate(), 0);
    runtime->stop();
    caller.join();
}
