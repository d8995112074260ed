// SPDX-License-Identifier: Apache-2.0
// The handler that the factory makes: how it is built, what it says of itself, how it goes.

#include <stdexcept>

#include "handler_fixture.h"
#include "operation_facts.h"

namespace {

using namespace conformance;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using zeb::api::KX_RPCHandler;

namespace rmi = org::opensplice::DDS_RMI;

class Handler : public LookupTest
{
protected:
    Events making_a_handler()
    {
        std::exception_ptr thrown;
        Events events = events_of([&] { thrown = caught([&] { m_handler = make_handler(); }); });
        m_thrown = description(thrown);
        return events;
    }

    Events deleting_the_handler()
    {
        return events_of([&] { m_handler.reset(); });
    }

    std::string getting_line() const
    {
        return "output: === Getting MY server proxy VarnelDE_Server " + m_instance + "\n";
    }

    std::unique_ptr<KX_RPCHandler> m_handler;
    std::string m_thrown;
};

TEST_F(Handler, writes_its_lines_in_order_when_the_service_is_there)
{
    EXPECT_THAT(only({"output"}, making_a_handler()),
                ElementsAre("output: VarnelInterface constructor\n", "output: KX_DDS_RMI_PROXY construct\n",
                            getting_line(), "output: VarnelRPCHandler constructor\n",
                            "output: KX_DDS_RMI_PROXY isProxyFound1\n",
                            "output: KX_DDS_RMI_PROXY isProxyFound1\n"));
}

TEST_F(Handler, writes_its_lines_in_order_when_the_lookup_answers_empty)
{
    rmi_layer().found.reset();

    EXPECT_THAT(only({"output"}, making_a_handler()),
                ElementsAre("output: VarnelInterface constructor\n", "output: KX_DDS_RMI_PROXY construct\n",
                            getting_line(), "output: VarnelRPCHandler constructor\n",
                            "output: KX_DDS_RMI_PROXY isProxyFound0\n"));
}

TEST_F(Handler, writes_its_lines_in_order_when_the_service_is_missing)
{
    rmi_layer().at["resolve"] = [] { throw rmi::SERVICE_NOT_FOUND(); };

    EXPECT_THAT(only({"output"}, making_a_handler()),
                ElementsAre("output: VarnelInterface constructor\n", "output: KX_DDS_RMI_PROXY construct\n",
                            getting_line(), "output:  *** Unable to find the service !\n",
                            "output: VarnelRPCHandler constructor\n",
                            "output: KX_DDS_RMI_PROXY isProxyFound0\n"));
}

TEST_F(Handler, looks_for_VarnelDE_Server_once)
{
    const Events events = making_a_handler();

    EXPECT_THAT(events,
                Contains("lookup: resolve(VarnelDE_Server, VarnelDE_Server_Proxy, -1, " + m_instance + ")"));
    EXPECT_EQ(joined("lookup", events).find("ready?"), joined("lookup", events).rfind("ready?"));
}

TEST_F(Handler, is_bound_when_the_service_was_found)
{
    making_a_handler();
    bool bound = false;

    const Events events = events_of([&] { bound = m_handler->isBound(); });

    EXPECT_TRUE(bound);
    EXPECT_THAT(events, ElementsAre("output: VarnelRPCHandler isBound:1\n"));
}

TEST_F(Handler, is_there_but_unbound_when_the_service_was_not_found)
{
    rmi_layer().found.reset();
    making_a_handler();
    ASSERT_NE(m_handler, nullptr);
    bool bound = true;

    const Events events = events_of([&] { bound = m_handler->isBound(); });

    EXPECT_FALSE(bound);
    EXPECT_THAT(events, ElementsAre("output: VarnelRPCHandler isBound:0\n"));
}

TEST_F(Handler, writes_its_line_and_says_the_same_whenever_it_is_asked)
{
    making_a_handler();

    const Events events = events_of([&] {
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(m_handler->isBound());
    });

    EXPECT_THAT(events, SizeIs(3));
    EXPECT_THAT(events, Each("output: VarnelRPCHandler isBound:1\n"));
}

TEST_F(Handler, stays_unbound_when_the_service_comes_later)
{
    rmi_layer().found.reset();
    making_a_handler();
    rmi_layer().found.reset(new RecordingProxy);

    EXPECT_FALSE(m_handler->isBound());
    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
}

TEST_F(Handler, asks_once_more_whether_its_proxy_was_found_before_it_registers_methods)
{
    rmi_layer().found.reset();
    making_a_handler();

    const Events events = events_of([&] { build_interface(*m_handler); });

    EXPECT_THAT(only({"output"}, events), ElementsAre("output: KX_DDS_RMI_PROXY isProxyFound0\n"));
    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
}

TEST_F(Handler, is_another_one_each_time_with_a_lookup_of_its_own)
{
    const Events events = making_a_handler();
    const std::unique_ptr<KX_RPCHandler> first = std::move(m_handler);

    const Events second_events = making_a_handler();

    EXPECT_NE(m_handler, first);
    EXPECT_EQ(only({"lookup"}, second_events), only({"lookup"}, events));
    EXPECT_THAT(only({"runtime"}, second_events), Contains("runtime: obtain"));
}

TEST_F(Handler, goes_in_the_reverse_order)
{
    making_a_handler();
    rmi_layer().found.reset();

    EXPECT_THAT(only({"output", "syslog", "runtime", "lookup", "handle"}, deleting_the_handler()),
                ElementsAre("output: VarnelRPCHandler destructor\n", "output: KX_DDS_RMI_PROXY destroy\n",
                            "handle: proxy 1", "runtime: stop", "handle: runtime 0", "runtime: released",
                            "output: VarnelInterface destructor\n", "handle: proxy 0",
                            "lookup: proxy released"));
}

TEST_F(Handler, goes_in_the_same_order_when_it_is_unbound)
{
    rmi_layer().found.reset();
    making_a_handler();

    EXPECT_THAT(only({"output", "syslog", "runtime", "lookup"}, deleting_the_handler()),
                ElementsAre("output: VarnelRPCHandler destructor\n", "output: KX_DDS_RMI_PROXY destroy\n",
                            "runtime: stop", "runtime: released", "output: VarnelInterface destructor\n"));
}

TEST_F(Handler, takes_its_methods_with_it_last)
{
    making_a_handler();

    const Events events = only({"output", "json"}, deleting_the_handler());

    // Each method drops its description.
    ASSERT_THAT(events, SizeIs(3 + operation_names().size()));
    EXPECT_EQ(events[2], "output: VarnelInterface destructor\n");
    EXPECT_THAT(Events(events.begin() + 3, events.end()), Each("json: dropped"));
    EXPECT_EQ(objects_left(), 0U);
}

TEST_F(Handler, takes_nothing_of_another_one_with_it)
{
    making_a_handler();
    const std::unique_ptr<KX_RPCHandler> other = std::move(m_handler);
    making_a_handler();

    const Events events = deleting_the_handler();

    EXPECT_THAT(only({"lookup"}, events), IsEmpty());
    EXPECT_TRUE(other->isBound());
    EXPECT_THAT(other->GetMethods(), SizeIs(operation_names().size()));
}

class HandlerWithoutItsLookup : public Handler, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Handler, HandlerWithoutItsLookup, testing::Values("start", "device", "resolve"),
                         [](const auto& each) { return std::string(each.param); });

TEST_P(HandlerWithoutItsLookup, is_taken_down_and_the_exception_reaches_the_host)
{
    rmi_layer().at[GetParam()] = [] { throw std::runtime_error("broken"); };

    const Events events = making_a_handler();

    EXPECT_EQ(m_thrown, "std::runtime_error: broken");
    EXPECT_EQ(m_handler, nullptr);
    const Events output = only({"output"}, events);
    EXPECT_EQ(output.front(), "output: VarnelInterface constructor\n");
    EXPECT_EQ(output.back(), "output: VarnelInterface destructor\n");
    EXPECT_THAT(output, testing::Not(Contains("output: VarnelRPCHandler constructor\n")));
    EXPECT_THAT(output, testing::Not(Contains("output: VarnelRPCHandler destructor\n")));
    EXPECT_THAT(output, testing::Not(Contains("output: KX_DDS_RMI_PROXY destroy\n")));
    EXPECT_EQ(objects_left(), 0U);
    EXPECT_THAT(arrays_left(), IsEmpty());
}

/// The lines of a construction that a failed allocation has ended, in which every part that was complete has
/// gone again.
void expect_complete_parts_destroyed(const Events& events)
{
    const std::string output = joined("output", events);
    const auto has = [&](const char* line) { return output.find(line) != std::string::npos; };
    EXPECT_EQ(has("VarnelInterface constructor\n"), has("VarnelInterface destructor\n")) << output;
    EXPECT_EQ(has("VarnelRPCHandler constructor\n"), has("KX_DDS_RMI_PROXY destroy\n")) << output;
    EXPECT_FALSE(has("VarnelRPCHandler destructor\n")) << output;
}

TEST_F(Handler, leaves_nothing_behind_wherever_its_construction_runs_out_of_memory)
{
    const std::size_t fewest_allocations = 1 + operation_names().size(); // the handler and its methods
    making_a_handler(); // what is made once for the process is there now
    m_handler.reset();
    std::size_t failing = 1;
    for (;; ++failing) {
        SCOPED_TRACE("allocation " + std::to_string(failing));
        fail_allocation(failing);
        const Events events = making_a_handler();
        fail_allocation(0);
        if (m_thrown.empty())
            break;

        EXPECT_EQ(m_thrown, "std::bad_alloc: std::bad_alloc");
        EXPECT_EQ(m_handler, nullptr);
        expect_complete_parts_destroyed(events);
        EXPECT_EQ(objects_left(), 0U);
        EXPECT_THAT(arrays_left(), IsEmpty());
    }
    EXPECT_GT(failing, fewest_allocations);
}

TEST_F(Handler, tells_the_system_log_what_its_lookup_came_to_and_nothing_else)
{
    EXPECT_THAT(only({"syslog"}, making_a_handler()), SizeIs(3));
    EXPECT_THAT(only({"syslog"}, deleting_the_handler()), IsEmpty());
}

} // namespace
