// SPDX-License-Identifier: Apache-2.0
// Calls through the built library to a server process and back.

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <set>

#include "../operation_facts.h"
#include "processes.h"
#include "support/child_process.h"
#include "support/dds_domain.h"

namespace {

using namespace conformance;
using testing::StartsWith;

const std::string success = R"(result 0 response {"id":7})";

std::string params(const std::string& members)
{
    return R"({"params": {)" + members + "}}";
}

class RemoteCalls : public testing::Test
{
protected:
    /// The plug-in's handler 0, bound.
    void bind()
    {
        ASSERT_EQ(m_host.run("make"), "made 0");
        ASSERT_EQ(m_host.run("bound 0"), "bound");
    }

    std::string call(const std::string& method, const std::string& request)
    {
        return m_host.run("call 0 " + method + " " + request);
    }

    test_support::DdsDomain m_domain;
    Host m_host;
};

class RemoteCall : public RemoteCalls, public testing::WithParamInterface<OperationFacts>
{
};

INSTANTIATE_TEST_SUITE_P(Operations, RemoteCall, testing::ValuesIn(all_operations()),
                         [](const auto& each) { return each.param.name; });

TEST_P(RemoteCall, reaches_the_server_with_its_arguments_and_logs_the_answer)
{
    Server server({"-7"});
    bind();

    EXPECT_EQ(call(GetParam().name, request_for(GetParam())), success);

    EXPECT_EQ(server.next_call(), call_line(GetParam()));
    EXPECT_EQ(m_host.next_line("returns"), GetParam().reply_text + "-7");
    EXPECT_EQ(server.calls(), 1U);
    EXPECT_THAT(m_host.output_at_end(),
                testing::HasSubstr("VarnelRPCHandler isBound:1\nCALL RPC " + GetParam().name + "\n" +
                                   GetParam().reply_text + "-7\n"));
}

TEST_F(RemoteCalls, log_every_answer_once_and_as_it_is)
{
    Server server({"0", "-1", "2147483647", "-2147483648"});
    bind();

    for (const char* const answer : {"0", "-1", "2147483647", "-2147483648"}) {
        call("network_commission", params(R"("mac_addr_list": "AA")"));
        EXPECT_EQ(m_host.next_line("returns"), std::string("async_net_commission returns: ") + answer);
    }
}

TEST_F(RemoteCalls, of_one_operation_in_quick_succession_all_get_their_answers)
{
    constexpr int calls = 20;
    std::vector<std::string> answers;
    std::multiset<std::string> expected;
    for (int i = 1; i <= calls; ++i) {
        answers.push_back(std::to_string(i));
        expected.insert("async_node_get_data returns: " + answers.back());
    }
    Server server(answers);
    bind();

    // Lines of calls and replies may run into each other, so the replies come when all calls have been made.
    server.pause();
    for (int i = 0; i < calls; ++i)
        call("node_get_data", params(R"("mac_addr": "AA")"));
    server.go_on();

    std::multiset<std::string> lines;
    for (int i = 0; i < calls; ++i)
        lines.insert(m_host.next_line("async_node_get_data returns: "));
    EXPECT_EQ(lines, expected);
}

TEST_F(RemoteCalls, carry_any_bytes)
{
    Server server;
    bind();

    call("node_set_config", params("\"mac_addr\": \"\xFF\xC3\x28\", \"newCfg\": \"a\\tb\\u0000c\""));
    EXPECT_EQ(server.next_call(), R"(node_set_config("\xff\xc3(", "a\x09b"))");
    call("node_get_config", params(R"("mac_addr": "\u00e4\"\\")"));
    EXPECT_EQ(server.next_call(), R"(node_get_config("\xc3\xa4"\"))");
    call("network_add_nodes", "{}");
    EXPECT_EQ(server.next_call(), R"(network_add_nodes(""))");
}

TEST_F(RemoteCalls, carry_a_mebibyte)
{
    const std::string text(1 << 20, 'x');
    Server server;
    bind();

    EXPECT_EQ(call("network_commission", params("\"mac_addr_list\": \"" + text + "\"")), success);

    EXPECT_TRUE(server.next_call() == "network_commission(\"" + text + "\")");
    EXPECT_EQ(m_host.next_line("returns"), "async_net_commission returns: 0");
}

TEST_F(RemoteCalls, with_a_bad_node_type_throw_and_reach_nobody)
{
    Server server;
    bind();

    EXPECT_EQ(call("test_node_create", params(R"("mac_addr": "AA", "type": "none")")),
              "threw std::invalid_argument: stoi");
    EXPECT_EQ(call("test_node_create", params(R"("mac_addr": "AA", "type": "2147483648")")),
              "threw std::out_of_range: stoi");
    EXPECT_EQ(call("network_get_info", "{}"), success);

    EXPECT_EQ(server.next_call(), "network_get_info()");
    EXPECT_EQ(m_host.next_line("CALL RPC"), "CALL RPC network_get_info");
}

TEST_F(RemoteCalls, to_a_server_that_has_gone_throw_once_they_are_logged)
{
    auto server = std::make_unique<Server>();
    bind();
    server->end();
    server.reset();

    // The client hears of the server's end a moment later; what it sends until then is accepted.
    const auto deadline = std::chrono::steady_clock::now() + test_support::event_deadline;
    std::string outcome;
    do
        outcome = call("node_get_data", params(R"("mac_addr": "AA")"));
    while (outcome.rfind("threw", 0) != 0 && std::chrono::steady_clock::now() < deadline);

    EXPECT_THAT(outcome, StartsWith("threw org::opensplice::DDS_RMI::SERVICE_NOT_FOUND"));
    EXPECT_EQ(m_host.next_line("CALL RPC"), "CALL RPC node_get_data");
    EXPECT_EQ(m_host.run("delete 0"), "deleted");
}

TEST_F(RemoteCalls, leave_no_copy_behind_because_the_interface_library_frees_them)
{
    constexpr int calls = 300;
    Server server;
    bind();
    const auto call_and_wait = [&] {
        call("node_set_config", params(R"("mac_addr": "AA", "newCfg": "c")"));
        EXPECT_EQ(m_host.next_line("returns"), "async_node_set_config returns: 0");
    };
    call_and_wait();
    const std::string arrays_at_first = m_host.run("arrays");

    for (int i = 0; i < calls; ++i)
        call_and_wait();

    EXPECT_EQ(m_host.run("arrays"), arrays_at_first);
}

TEST_F(RemoteCalls, that_fail_leave_only_the_copies_that_were_never_handed_over)
{
    constexpr int calls = 50;
    Server server;
    bind();
    const long arrays_at_first = std::stol(m_host.run("arrays"));

    for (int i = 0; i < calls; ++i)
        call("test_node_create", params(R"("mac_addr": "AA", "type": "none")"));

    EXPECT_EQ(std::stol(m_host.run("arrays")), arrays_at_first + calls);
}

} // namespace
