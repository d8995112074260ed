// SPDX-License-Identifier: Apache-2.0
#include "varnel_reply_handlers.h"

#include <gmock/gmock.h>

#include <climits>
#include <memory>
#include <type_traits>

#include "VarnelRMI_operations.h"
#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using namespace DDS_RMI::VarnelRMI;
using testing::ElementsAre;
using testing::IsEmpty;

namespace rmi = org::opensplice::DDS_RMI;

class ReplyHandler : public OperationTest, public testing::WithParamInterface<OperationFacts>
{
protected:
    /// The events of these replies, in turn, to one call.
    Events replied(std::initializer_list<DDS::Long> results)
    {
        call(GetParam().name);
        const Recording recording;
        for (const DDS::Long result : results)
            m_proxy->calls().back().reply(result);
        return recording.all();
    }

    std::string line(const std::string& number) const
    {
        return "output: " + GetParam().reply_text + number + "\n";
    }
};

INSTANTIATE_TEST_SUITE_P(Replies, ReplyHandler, testing::ValuesIn(all_operations()),
                         [](const auto& each) { return each.param.name; });

TEST_P(ReplyHandler, writes_its_text_and_the_number_in_one_flushed_line)
{
    EXPECT_THAT(replied({0}), ElementsAre(line("0")));
}

TEST_P(ReplyHandler, writes_any_number_and_treats_failures_like_successes)
{
    EXPECT_THAT(replied({-1, 1, INT_MAX, INT_MIN}),
                ElementsAre(line("-1"), line("1"), line("2147483647"), line("-2147483648")));
}

TEST_P(ReplyHandler, of_an_earlier_call_is_not_the_one_of_a_later_call)
{
    call(GetParam().name);
    call(GetParam().name);

    Events events;
    {
        const Recording recording;
        m_proxy->calls()[1].reply(2);
        m_proxy->calls()[0].reply(1);
        events = recording.all();
    }

    EXPECT_THAT(events, ElementsAre(line("2"), line("1")));
}

TEST_P(ReplyHandler, waits_for_nothing)
{
    call(GetParam().name);

    EXPECT_FALSE(m_proxy->calls().back().handler->bActive);
    DDS::QueryCondition condition;
    const Recording recording;
    m_proxy->calls().back().handler->asyncWait(&condition);
    EXPECT_THAT(recording.all(), IsEmpty());
}

/// Checks at compile time what a handler class is made of.
template <class Handler, class Base>
void expect_made_of(const std::string& name)
{
    static_assert(std::is_base_of<Base, Handler>::value, "");
    static_assert(std::is_convertible<Handler*, Base*>::value, "the base is public");
    static_assert(std::is_base_of<rmi::CAsyncReplyHandlerImpl, Base>::value, "");
    static_assert(std::is_base_of<rmi::CAsyncReplyHandler, rmi::CAsyncReplyHandlerImpl>::value, "");
    static_assert(std::is_base_of<rmi::RefCounted, rmi::CAsyncReplyHandler>::value, "");
    static_assert(std::is_default_constructible<Handler>::value, "");
    const std::unique_ptr<Handler> handler(new Handler);
    // A virtual base lies behind the object's own table, so it has an address of its own.
    EXPECT_NE(static_cast<void*>(handler.get()), static_cast<void*>(static_cast<Base*>(handler.get())))
        << name;
    EXPECT_EQ(sizeof(Handler), sizeof(void*) + sizeof(Base)) << name << " has members of its own";
}

/// Whether the call was given a handler of this class.
template <class Handler>
bool is_handled_by(const ReceivedCall& received)
{
    return dynamic_cast<Handler*>(received.handler) != nullptr;
}

TEST(ReplyHandlerClasses, derive_virtually_from_the_generated_base_and_add_nothing)
{
#define EXPECT_CLASS(op, ...) expect_made_of<MY_##op##_handler, VarnelRMIService_##op##_Reply_Handler>(#op);
    FOR_EVERY_OPERATION(EXPECT_CLASS)
#undef EXPECT_CLASS
}

class HandlerOfEachCall : public OperationTest
{
};

TEST_F(HandlerOfEachCall, is_of_the_operation_s_own_class)
{
#define EXPECT_HANDLER(op, ...)                                                                              \
    call(#op);                                                                                               \
    EXPECT_TRUE(is_handled_by<MY_##op##_handler>(m_proxy->calls().back())) << #op;
    FOR_EVERY_OPERATION(EXPECT_HANDLER)
#undef EXPECT_HANDLER
}

} // namespace
