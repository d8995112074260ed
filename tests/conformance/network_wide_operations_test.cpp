// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::IsEmpty;

class NetworkWideOperation : public OperationTest, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(NetworkWide, NetworkWideOperation,
                         testing::Values("network_get_info", "network_get_node_list", "network_decommission"),
                         [](const auto& each) { return std::string(each.param); });

TEST_P(NetworkWideOperation, does_not_look_at_the_request)
{
    for (const char* const request :
         {"{}", R"({"params": {}})", R"({"params": {"mac_addr": "AA", "force": true}})", R"({"params": 3})",
          R"({"params": null, "unknown": [1]})", "[]", "null", "\"text\""}) {
        SCOPED_TRACE(request);

        const Outcome outcome = call(GetParam(), request);

        EXPECT_EQ(outcome.events, expected_events(GetParam()));
        EXPECT_EQ(outcome.result, 0);
        EXPECT_TRUE(outcome.is_response_untouched);
    }
}

TEST_P(NetworkWideOperation, passes_the_handler_alone)
{
    call(GetParam());

    ASSERT_EQ(m_proxy->calls().size(), 1U);
    EXPECT_THAT(m_proxy->calls()[0].arguments, IsEmpty());
    EXPECT_NE(m_proxy->calls()[0].handler, nullptr);
}

TEST_P(NetworkWideOperation, logs_before_anything_else)
{
    const Events events = call(GetParam()).events;

    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.front(), std::string("output: CALL RPC ") + GetParam() + "\n");
}

TEST_P(NetworkWideOperation, is_sent_on_every_call)
{
    call(GetParam());
    call(GetParam());
    call(GetParam());

    EXPECT_EQ(m_proxy->calls().size(), 3U);
}

} // namespace
