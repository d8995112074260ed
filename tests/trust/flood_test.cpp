// SPDX-License-Identifier: Apache-2.0
// A peer without a certificate that sends all it can.

#include <gmock/gmock.h>

#include <string>

#include "protected_system.h"

namespace {

using namespace trust_test;
using system_test::Host;
using system_test::start_server;
using test_support::ChildProcess;
using testing::HasSubstr;
using testing::Optional;

constexpr const char* packets_a_second = "2000";

TEST(Flood, of_a_peer_without_a_certificate_changes_nothing_for_the_known_ones)
{
    const ProtectedDomain known;
    ChildProcess server = start_server({}, known.server);
    Host host({}, known.host);
    host.wait_until_bound();

    ChildProcess flood({PYTHON, FLOOD, std::to_string(known.domain.id()), packets_a_second});
    ASSERT_TRUE(flood.wait_for_line("flooding")) << flood.error_output();
    constexpr int rounds = 5;
    for (int round = 0; round < rounds; ++round)
        EXPECT_EQ(count_answered(host, every_method()), 14);
    flood.close_input();
    const std::string sent = flood.wait_for_line("packets").value_or("");

    EXPECT_NE(sent, "") << flood.error_output();
    EXPECT_EQ(count_answered(host, every_method()), 14);
    EXPECT_EQ(system_test::count_lines(server.output(), "network_commission("), rounds + 1);
    EXPECT_THAT(server.terminate(), Optional(0));
}

TEST(Flood, does_not_keep_known_peers_from_finding_each_other)
{
    const ProtectedDomain known;
    ChildProcess flood({PYTHON, FLOOD, std::to_string(known.domain.id()), packets_a_second});
    ASSERT_TRUE(flood.wait_for_line("flooding")) << flood.error_output();

    const ChildProcess server = start_server({}, known.server);
    Host host({}, known.host);
    host.wait_until_bound();

    EXPECT_EQ(count_answered(host, every_method()), 14);
}

} // namespace
