// SPDX-License-Identifier: Apache-2.0
// The steps that the fourteen operations share: parameters, log line, handler, remote call, release.

#include <gmock/gmock.h>

#include "fakes/allocation_probe.h"
#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::ElementsAre;
using testing::IsEmpty;

class EveryOperation : public OperationTest, public testing::WithParamInterface<OperationFacts>
{
};

INSTANTIATE_TEST_SUITE_P(CallSequence, EveryOperation, testing::ValuesIn(all_operations()),
                         [](const auto& each) { return each.param.name; });

TEST_P(EveryOperation, takes_its_steps_in_order_and_no_others)
{
    EXPECT_EQ(call(GetParam().name).events, expected_events(GetParam().name));
}

TEST_P(EveryOperation, returns_0_and_leaves_the_response_alone)
{
    const Outcome outcome = call(GetParam().name);

    EXPECT_EQ(outcome.result, 0);
    EXPECT_TRUE(outcome.is_response_untouched);
}

TEST_P(EveryOperation, destroys_the_handler_before_it_returns_when_nobody_else_holds_it)
{
    m_proxy->keep_handlers(false);

    const Outcome outcome = call(GetParam().name);

    EXPECT_THAT(only({"mutex", "handle", "call"}, outcome.events),
                ElementsAre("mutex: made", "handle: handler 1", "call: " + call_line(GetParam()),
                            "handle: handler 0", "mutex: destroyed"));
    EXPECT_EQ(objects_left(), 0U);
    EXPECT_EQ(outcome.result, 0);
}

TEST_P(EveryOperation, leaves_a_handler_to_whoever_holds_it_until_the_last_reference_goes)
{
    call(GetParam().name);
    auto held = m_proxy->calls().at(0).kept;
    m_proxy->forget_calls();
    EXPECT_EQ(objects_left(), 1U);

    held.reset();

    EXPECT_EQ(objects_left(), 0U);
}

TEST_P(EveryOperation, makes_a_new_handler_for_each_call_and_keeps_none)
{
    call(GetParam().name);
    call(GetParam().name);

    ASSERT_EQ(m_proxy->calls().size(), 2U);
    EXPECT_NE(m_proxy->calls()[0].handler, m_proxy->calls()[1].handler);
    EXPECT_EQ(objects_left(), 2U);
}

TEST_P(EveryOperation, makes_new_copies_for_each_call_and_frees_none)
{
    call(GetParam().name);
    const std::size_t copies = arrays_left().size();
    call(GetParam().name);

    EXPECT_EQ(copies, m_proxy->calls()[0].texts.size());
    EXPECT_EQ(arrays_left().size(), 2 * copies);
    for (const ReceivedCall& received : m_proxy->calls())
        for (const DDS::String text : received.texts)
            EXPECT_TRUE(is_left(text));
}

TEST_P(EveryOperation, keeps_its_hands_off_the_copies_when_the_reply_comes)
{
    call(GetParam().name);
    const std::vector<std::string> copies = arrays_left();

    m_proxy->calls().at(0).reply(0);

    EXPECT_EQ(arrays_left(), copies);
}

TEST_P(EveryOperation, logs_its_name_in_one_flushed_line)
{
    EXPECT_THAT(only({"output"}, call(GetParam().name).events),
                ElementsAre("output: CALL RPC " + GetParam().name + "\n"));
    EXPECT_EQ(m_output.text(), "VarnelInterface constructor\nCALL RPC " + GetParam().name + "\n");
}

TEST_P(EveryOperation, never_touches_the_waiting_forms_nor_the_system_log)
{
    const Events events = call(GetParam().name).events;

    EXPECT_THAT(only({"call"}, events), ElementsAre("call: " + call_line(GetParam())));
    EXPECT_THAT(only({"syslog", "runtime", "lookup", "random", "method"}, events), IsEmpty());
}

} // namespace
