// SPDX-License-Identifier: Apache-2.0
// How the service is found and let go: steps, log lines, outcomes.

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "handler_fixture.h"

namespace {

using namespace conformance;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace rmi = org::opensplice::DDS_RMI;

const std::string service = "VarnelDE_Server";
const char* const not_found_line = "output:  *** Unable to find the service !\n";
const char* const not_found_message =
    "syslog: 6 \" *** Unable to find the service !\" ->  *** Unable to find the service !";
const char* const failed_message =
    "syslog: 6 \" *** Failed to get the server proxy !\" ->  *** Failed to get the server proxy !";

class ProxyHolder : public LookupTest
{
protected:
    Events making_a_holder(const std::string& name = service)
    {
        std::exception_ptr thrown;
        Events events =
            events_of([&] { thrown = caught([&] { m_holder = std::make_unique<Holder>(name); }); });
        m_thrown = description(thrown);
        return events;
    }

    Events dropping_the_holder()
    {
        return events_of([&] { m_holder.reset(); });
    }

    /// The events from the start of the lookup on.
    static Events after_the_announcement(const Events& events)
    {
        const Events chosen = only({"output", "syslog", "runtime", "lookup"}, events);
        for (std::size_t i = 0; i < chosen.size(); ++i)
            if (chosen[i].find("syslog: 6 \"Getting MY") == 0)
                return Events(chosen.begin() + long(i) + 1, chosen.end());
        return {"no announcement"};
    }

    static void throw_at(const std::string& step, const std::function<void()>& thrower)
    {
        rmi_layer().at[step] = thrower;
    }

    std::unique_ptr<Holder> m_holder;
    std::string m_thrown;
};

TEST_F(ProxyHolder, takes_its_steps_in_order)
{
    EXPECT_THAT(
        only({"output", "syslog", "runtime", "lookup", "random"}, making_a_holder()),
        ElementsAre(
            "output: KX_DDS_RMI_PROXY construct\n",
            "syslog: 6 \"KX_DDS_RMI_PROXY construct\" -> KX_DDS_RMI_PROXY construct",
            "runtime: startRUNTIME(true)", "runtime: obtain",
            "runtime: start --RMIClientThreadingModel=MT --RMIServiceDiscoveryTimeout=10",
            "random: device default", "random: value",
            "output: === Getting MY server proxy VarnelDE_Server " + m_instance + "\n",
            "syslog: 6 \"Getting MY server proxy %s %d\" -> Getting MY server proxy VarnelDE_Server " +
                m_instance,
            "lookup: ready?", "lookup: register", "lookup: registry",
            "lookup: resolve(VarnelDE_Server, VarnelDE_Server_Proxy, -1, " + m_instance + ")",
            "lookup: registry released",
            "syslog: 6 \"=== Succeeded in getting the server proxy named %s\" -> === Succeeded in "
            "getting the server proxy named VarnelDE_Server",
            "random: closed"));
}

TEST_F(ProxyHolder, holds_the_proxy_that_was_found)
{
    making_a_holder();

    EXPECT_TRUE(m_holder->is_proxy_found());
    EXPECT_EQ(m_holder->proxy().get(), m_proxy);
}

TEST_F(ProxyHolder, gives_out_references_of_their_own)
{
    making_a_holder();

    const Events events = events_of([&] { m_holder->proxy(); });

    // One is the test's answer, one the holder's.
    EXPECT_THAT(events, ElementsAre("handle: proxy 3", "handle: proxy 2"));
}

TEST_F(ProxyHolder, writes_a_line_whenever_it_is_asked)
{
    making_a_holder();

    const Events events = events_of([&] {
        m_holder->is_proxy_found();
        m_holder->is_proxy_found();
    });

    EXPECT_THAT(events, ElementsAre("output: KX_DDS_RMI_PROXY isProxyFound1\n",
                                    "output: KX_DDS_RMI_PROXY isProxyFound1\n"));
}

class InstanceNumber : public ProxyHolder, public testing::WithParamInterface<unsigned>
{
};

INSTANTIATE_TEST_SUITE_P(ProxyHolder, InstanceNumber, testing::Values(0U, 1U, 5489U, 77U, 4294967295U));

TEST_P(InstanceNumber, is_drawn_from_the_device_and_is_the_same_in_line_message_and_lookup)
{
    set_random_device_value(GetParam());
    const std::string number = instance_for(GetParam());

    const Events events = making_a_holder();

    EXPECT_THAT(events, Contains("output: === Getting MY server proxy VarnelDE_Server " + number + "\n"));
    EXPECT_THAT(events, Contains("syslog: 6 \"Getting MY server proxy %s %d\" -> Getting MY server proxy "
                                 "VarnelDE_Server " +
                                 number));
    EXPECT_THAT(events,
                Contains("lookup: resolve(VarnelDE_Server, VarnelDE_Server_Proxy, -1, " + number + ")"));
}

TEST_F(ProxyHolder, draws_from_1_to_10000)
{
    constexpr unsigned draws = 30000;
    int lowest = 10000;
    int highest = 1;
    for (unsigned seed_value = 0; seed_value < draws; ++seed_value) {
        const int number = std::stoi(instance_for(seed_value));
        lowest = std::min(lowest, number);
        highest = std::max(highest, number);
    }
    ASSERT_EQ(lowest, 1);
    ASSERT_EQ(highest, 10000);

    for (const int wanted : {lowest, highest}) {
        unsigned seed_value = 0;
        while (instance_for(seed_value) != std::to_string(wanted))
            ++seed_value;
        set_random_device_value(seed_value);
        EXPECT_THAT(making_a_holder(), Contains("output: === Getting MY server proxy VarnelDE_Server " +
                                                std::to_string(wanted) + "\n"));
    }
}

TEST_F(ProxyHolder, draws_afresh_for_every_holder)
{
    making_a_holder();

    EXPECT_THAT(only({"random"}, making_a_holder()),
                ElementsAre("random: device default", "random: value", "random: closed"));
}

TEST_F(ProxyHolder, makes_the_proxy_name_by_appending_to_the_service_name)
{
    EXPECT_THAT(making_a_holder(""), Contains("lookup: resolve(, _Proxy, -1, " + m_instance + ")"));
    EXPECT_THAT(making_a_holder("Other"),
                Contains("lookup: resolve(Other, Other_Proxy, -1, " + m_instance + ")"));
}

TEST_F(ProxyHolder, names_its_service_in_its_messages)
{
    const Events events = making_a_holder("100%s");

    EXPECT_THAT(events, Contains("output: === Getting MY server proxy 100%s " + m_instance + "\n"));
    EXPECT_THAT(events,
                Contains("syslog: 6 \"Getting MY server proxy %s %d\" -> Getting MY server proxy 100%s " +
                         m_instance));
    EXPECT_THAT(events, Contains("syslog: 6 \"=== Succeeded in getting the server proxy named %s\" -> === "
                                 "Succeeded in getting the server proxy named 100%s"));
}

TEST_F(ProxyHolder, finds_nothing_when_the_runtime_is_not_ready_and_leaves_it_running)
{
    rmi_layer().is_usable = false;

    EXPECT_THAT(after_the_announcement(making_a_holder()), ElementsAre("lookup: ready?", failed_message));
    EXPECT_FALSE(m_holder->is_proxy_found());
    EXPECT_EQ(m_holder->proxy().get(), nullptr);
}

TEST_F(ProxyHolder, finds_nothing_when_the_answer_is_empty_and_leaves_the_runtime_running)
{
    rmi_layer().found.reset();

    EXPECT_THAT(after_the_announcement(making_a_holder()),
                ElementsAre("lookup: ready?", "lookup: register", "lookup: registry",
                            testing::StartsWith("lookup: resolve("), "lookup: registry released",
                            failed_message));
    EXPECT_FALSE(m_holder->is_proxy_found());
    EXPECT_EQ(m_holder->proxy().get(), nullptr);
}

TEST_F(ProxyHolder, takes_a_proxy_of_another_interface_for_not_found)
{
    rmi_layer().found.reset(new OtherProxy);

    const Events events = making_a_holder();

    EXPECT_EQ(m_thrown, "");
    EXPECT_EQ(after_the_announcement(events).back(), failed_message);
    EXPECT_THAT(only({"output"}, events), SizeIs(2));
    EXPECT_THAT(only({"runtime"}, events), Not(Contains("runtime: stopRUNTIME()")));
    EXPECT_FALSE(m_holder->is_proxy_found());
    EXPECT_EQ(m_holder->proxy().get(), nullptr);
}

class MissingService : public ProxyHolder, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(ProxyHolder, MissingService,
                         testing::Values("ready", "register", "registry", "resolve"),
                         [](const auto& each) { return std::string(each.param); });

TEST_P(MissingService, is_reported_and_stops_the_runtime)
{
    throw_at(GetParam(), [] { throw rmi::SERVICE_NOT_FOUND(); });

    Events events = after_the_announcement(making_a_holder());
    events.erase(std::remove_if(events.begin(), events.end(),
                                [](const std::string& event) { return event.find("lookup: ") == 0; }),
                 events.end());

    EXPECT_EQ(m_thrown, "");
    EXPECT_THAT(events,
                ElementsAre(not_found_line, not_found_message, "runtime: stopRUNTIME()", "runtime: stop"));
    EXPECT_FALSE(m_holder->is_proxy_found());
    EXPECT_EQ(m_holder->proxy().get(), nullptr);
}

TEST_P(MissingService, still_uses_the_stopped_runtime_when_the_holder_goes)
{
    throw_at(GetParam(), [] { throw rmi::SERVICE_NOT_FOUND(); });
    making_a_holder();

    EXPECT_THAT(only({"output", "syslog", "runtime"}, dropping_the_holder()),
                ElementsAre("output: KX_DDS_RMI_PROXY destroy\n", "runtime: stop", "runtime: released"));
}

TEST_F(ProxyHolder, keeps_the_proxy_that_it_had_found_when_the_service_then_proves_missing)
{
    throw_at("syslog", [messages = 0]() mutable {
        const int message_of_success = 3;
        if (++messages == message_of_success)
            throw rmi::SERVICE_NOT_FOUND();
    });

    const Events events = making_a_holder();

    EXPECT_EQ(only({"output"}, events).back(), not_found_line);
    EXPECT_FALSE(m_holder->is_proxy_found());
    EXPECT_EQ(m_holder->proxy().get(), m_proxy);
}

class OtherFailure : public ProxyHolder, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(ProxyHolder, OtherFailure,
                         testing::Values("start", "device", "ready", "register", "registry", "resolve"),
                         [](const auto& each) { return std::string(each.param); });

TEST_P(OtherFailure, leaves_the_constructor_without_a_word_and_lets_the_runtime_go)
{
    throw_at(GetParam(), [] { throw rmi::INTERNAL_ERROR("broken"); });

    const Events events = making_a_holder();

    EXPECT_EQ(m_thrown, "org::opensplice::DDS_RMI::INTERNAL_ERROR: broken");
    const bool is_announced = std::string(GetParam()) != "start" && std::string(GetParam()) != "device";
    EXPECT_THAT(only({"output"}, events), SizeIs(is_announced ? 2 : 1));
    EXPECT_THAT(only({"syslog"}, events), SizeIs(is_announced ? 2 : 1));
    const Events runtime = only({"runtime"}, events);
    EXPECT_THAT(Events(runtime.end() - 2, runtime.end()), ElementsAre("runtime: stop", "runtime: released"));
    EXPECT_THAT(runtime, Not(Contains("runtime: stopRUNTIME()")));
    EXPECT_EQ(objects_left(), 0U);
}

TEST_F(ProxyHolder, bears_that_the_runtime_cannot_even_be_obtained)
{
    throw_at("obtain", [] { throw std::bad_alloc(); });

    const Events events = making_a_holder();

    EXPECT_EQ(m_thrown, "std::bad_alloc: std::bad_alloc");
    EXPECT_THAT(only({"output", "runtime"}, events),
                ElementsAre("output: KX_DDS_RMI_PROXY construct\n", "runtime: startRUNTIME(true)",
                            "runtime: obtain", "runtime: stop"));
    EXPECT_EQ(objects_left(), 0U);
}

TEST_P(OtherFailure, that_is_no_error_of_the_RMI_layer_passes_as_well)
{
    throw_at(GetParam(), [] { throw std::runtime_error("broken"); });

    making_a_holder();

    EXPECT_EQ(m_thrown, "std::runtime_error: broken");
}

TEST_F(ProxyHolder, lets_the_proxy_go_before_the_runtime)
{
    making_a_holder();
    rmi_layer().found.reset();

    EXPECT_THAT(only({"output", "syslog", "runtime", "lookup"}, dropping_the_holder()),
                ElementsAre("output: KX_DDS_RMI_PROXY destroy\n", "lookup: proxy released", "runtime: stop",
                            "runtime: released"));
}

TEST_F(ProxyHolder, leaves_the_proxy_to_whoever_has_a_reference)
{
    making_a_holder();
    rmi_layer().found.reset();
    ProxyHandle kept = m_holder->proxy();

    EXPECT_THAT(only({"lookup"}, dropping_the_holder()), IsEmpty());
    EXPECT_THAT(only({"lookup"}, events_of([&] { kept.reset(); })), ElementsAre("lookup: proxy released"));
}

TEST_F(ProxyHolder, catches_nothing_when_it_goes)
{
    making_a_holder();
    throw_at("stop", [] { throw rmi::INTERNAL_ERROR("broken"); });

    EXPECT_DEATH(m_holder.reset(), "terminate called after throwing.*INTERNAL_ERROR");
    rmi_layer().at.clear();
}

TEST_F(ProxyHolder, never_calls_the_framework_to_stop_when_it_goes)
{
    making_a_holder();

    EXPECT_THAT(dropping_the_holder(), Not(Contains("runtime: stopRUNTIME()")));
}

TEST_F(ProxyHolder, looks_once_and_never_again)
{
    rmi_layer().found.reset();
    making_a_holder();
    rmi_layer().found.reset(new RecordingProxy);

    EXPECT_THAT(only({"lookup"}, events_of([&] { EXPECT_FALSE(m_holder->is_proxy_found()); })), IsEmpty());
}

} // namespace
