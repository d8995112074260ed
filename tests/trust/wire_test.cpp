// SPDX-License-Identifier: Apache-2.0
// What can be seen of protected calls by those who are not meant to.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "packet_capture.h"
#include "protected_system.h"

namespace {

using namespace trust_test;
using system_test::Host;
using system_test::start_server;
using test_support::ChildProcess;
using testing::HasSubstr;
using testing::Optional;

/// Names and arguments that an exchange of all calls takes over the network.
const std::vector<std::string> secrets = {
    "topic___VarnelRMI", "VarnelRMIService",  "VarnelDE_Server",
    "commission",        "02:00:00:00:00:01", "interval=60",
};

std::vector<std::string> found_in(const std::string& packets)
{
    std::vector<std::string> found;
    for (const std::string& secret : secrets)
        if (packets.find(secret) != std::string::npos)
            found.push_back(secret);
    return found;
}

/// Makes every call and gives the packets that it takes.
std::string packets_of_all_calls(int domain, const Environment& of_server, const Environment& of_host)
{
    PacketCapture capture(domain);
    const ChildProcess server = start_server({}, of_server);
    Host host({}, of_host);
    host.wait_until_bound();
    EXPECT_EQ(count_answered(host, every_method()), 14);
    return capture.finish();
}

TEST(ProtectedCalls, show_no_name_and_no_argument_on_the_network)
{
    const ProtectedDomain known;
    try {
        const std::string packets = packets_of_all_calls(known.domain.id(), known.server, known.host);

        EXPECT_THAT(packets, HasSubstr("RTPS"));
        EXPECT_THAT(found_in(packets), testing::IsEmpty());
    } catch (const NoCapture& obstacle) {
        GTEST_SKIP() << obstacle.what();
    }
}

TEST(UnprotectedCalls, show_what_the_capture_looks_for)
{
    const test_support::DdsDomain domain;
    try {
        const std::string packets = packets_of_all_calls(domain.id(), {}, {});

        EXPECT_THAT(found_in(packets), testing::Not(testing::IsEmpty()));
    } catch (const NoCapture& obstacle) {
        GTEST_SKIP() << obstacle.what();
    }
}

class Onlookers : public testing::Test
{
protected:
    /// All that an onlooker sees while the known peers make every call.
    std::string seen_by(const Environment& environment) const
    {
        const ChildProcess server = start_server({}, m_known.server);
        Host host({}, m_known.host);
        host.wait_until_bound();
        ChildProcess onlooker({ONLOOKER, "2"}, environment);
        EXPECT_TRUE(onlooker.wait_for_line("in the domain")) << onlooker.error_output();
        EXPECT_EQ(count_answered(host, every_method()), 14);
        onlooker.write("\n");
        return onlooker.wait_for_line("seen").value_or("nothing was said");
    }

    const ProtectedDomain m_known;
};

TEST_F(Onlookers, without_a_certificate_see_no_topic)
{
    EXPECT_EQ(seen_by({{"CYCLONEDDS_URI", m_known.domain.uri()}}), "seen");
}

TEST_F(Onlookers, that_are_known_see_topics)
{
    EXPECT_THAT(seen_by(m_known.trust.add("onlooker", "both")), HasSubstr("topic___VarnelRMI"));
}

} // namespace
