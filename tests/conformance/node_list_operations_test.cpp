// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "fakes/allocation_probe.h"
#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::ElementsAre;

class NodeListOperation : public OperationTest, public testing::WithParamInterface<const char*>
{
protected:
    Outcome call_with(const std::string& list)
    {
        return call(GetParam(), R"({"params": {"mac_addr_list": ")" + list + "\"}}");
    }

    const ReceivedCall& last_call() const { return m_proxy->calls().back(); }
};

INSTANTIATE_TEST_SUITE_P(NodeList, NodeListOperation,
                         testing::Values("network_commission", "network_add_nodes", "network_remove_nodes",
                                         "network_get_nodes_status"),
                         [](const auto& each) { return std::string(each.param); });

TEST_P(NodeListOperation, passes_the_list_on_as_it_came)
{
    for (const char* const list : {"02:00:00:00:00:01", "aA:Bb,  cC ;;dD", " leading", "trailing ",
                                   "no addresses at all", ",", "AA AA"}) {
        call_with(list);

        EXPECT_THAT(last_call().arguments, ElementsAre('"' + std::string(list) + '"'));
    }
}

TEST_P(NodeListOperation, passes_an_empty_list_as_an_empty_text)
{
    const Outcome outcome = call_with("");

    EXPECT_THAT(last_call().arguments, ElementsAre("\"\""));
    EXPECT_THAT(only({"memory"}, outcome.events), ElementsAre("memory: new array 1", "memory: new object"));
    EXPECT_EQ(outcome.result, 0);
}

TEST_P(NodeListOperation, reaches_the_service_without_parameters_too)
{
    const Outcome outcome = call(GetParam(), "{}");

    EXPECT_THAT(last_call().arguments, ElementsAre("\"\""));
    EXPECT_EQ(outcome.result, 0);
}

TEST_P(NodeListOperation, takes_the_list_from_the_params_only)
{
    call(GetParam(), R"({"mac_addr_list": "top", "params": {"other": "x", "mac_addr_list": "inner"}})");

    EXPECT_THAT(last_call().arguments, ElementsAre("\"inner\""));
}

TEST_P(NodeListOperation, copies_the_list_before_the_value_is_dropped)
{
    const Events events = only({"json", "copy"}, call_with("AA").events);

    EXPECT_THAT(events, ElementsAre("json: request.get_json_object(params)",
                                    "json: get_json_string(mac_addr_list)", "copy: AA", "json: dropped"));
}

TEST_P(NodeListOperation, logs_once_the_handler_is_there)
{
    const Events events = only({"output", "handle"}, call_with("AA").events);

    EXPECT_THAT(events, ElementsAre("handle: handler 1", std::string("output: CALL RPC ") + GetParam() + "\n",
                                    "handle: handler 2", "handle: handler 1"));
}

TEST_P(NodeListOperation, leaves_one_copy_for_each_call)
{
    call_with("AA");
    call_with("BB");
    call_with("CC");

    EXPECT_THAT(arrays_left(), ElementsAre("AA", "BB", "CC"));
}

} // namespace
