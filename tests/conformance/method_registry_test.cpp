// SPDX-License-Identifier: Apache-2.0
// The table of methods: names, order, what each calls, and the method objects themselves.

#include <zeb/api/CallbackMethod.h>
#include <zeb/api/RpcMethod.h>

#include <stdexcept>

#include "framework/parse_json.h"
#include "handler_fixture.h"
#include "operation_facts.h"

namespace {

using namespace conformance;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using zeb::api::CallbackMethod;
using zeb::api::RpcMethod;
using zeb::api::data::KX_JSON;

namespace rmi = org::opensplice::DDS_RMI;

const std::vector<std::string> names_in_order = method_names();

class MethodRegistry : public LookupTest
{
protected:
    Events making_a_handler()
    {
        std::exception_ptr thrown;
        Events events = events_of([&] { thrown = caught([&] { m_handler = make_handler(); }); });
        m_thrown = description(thrown);
        return events;
    }

    std::unique_ptr<zeb::api::KX_RPCHandler> m_handler;
    std::string m_thrown;
};

TEST_F(MethodRegistry, has_every_method_in_order)
{
    making_a_handler();

    std::vector<std::string> names;
    for (const CallbackMethod* const method : m_handler->GetMethods())
        names.push_back(method->GetName());
    EXPECT_EQ(names, names_in_order);
}

TEST_F(MethodRegistry, hands_each_method_over_once_and_in_order)
{
    Events expected;
    for (const std::string& name : names_in_order)
        expected.push_back("method: " + name);

    EXPECT_EQ(only({"method"}, making_a_handler()), expected);
}

TEST_F(MethodRegistry, is_filled_once_the_proxy_has_been_handed_over_and_asked_for_again)
{
    const Events events = only({"output", "handle", "method"}, making_a_handler());

    const auto constructor =
        std::find(events.begin(), events.end(), "output: VarnelRPCHandler constructor\n");
    ASSERT_GE(events.end() - constructor, 6);
    // Besides the references of the test's answer and of the holder.
    EXPECT_THAT(Events(constructor + 1, constructor + 7),
                ElementsAre("output: KX_DDS_RMI_PROXY isProxyFound1\n", "handle: proxy 3", "handle: proxy 4",
                            "handle: proxy 3", "output: KX_DDS_RMI_PROXY isProxyFound1\n",
                            "method: network_commission"));
}

TEST_F(MethodRegistry, is_never_said_to_be_bound_while_it_is_half_filled)
{
    std::size_t asked = 0;
    rmi_layer().at["method"] = [&asked] {
        ++asked;
        EXPECT_FALSE(handler_being_filled().isBound());
    };

    making_a_handler();

    EXPECT_EQ(asked, names_in_order.size());
    EXPECT_TRUE(m_handler->isBound());
}

TEST_F(MethodRegistry, that_cannot_be_filled_takes_the_handler_down)
{
    rmi_layer().at["method"] = [] { throw std::runtime_error("no room"); };

    const Events events = making_a_handler();

    EXPECT_EQ(m_thrown, "std::runtime_error: no room");
    const Events output = only({"output"}, events);
    EXPECT_THAT(Events(output.end() - 2, output.end()),
                ElementsAre("output: KX_DDS_RMI_PROXY destroy\n", "output: VarnelInterface destructor\n"));
}

TEST_F(MethodRegistry, makes_an_empty_description_for_each_method_and_drops_it_before_the_next)
{
    Events expected;
    for (const std::string& name : names_in_order)
        for (const std::string& event : {std::string("json: made of no object"), std::string("json: copied"),
                                         "method: " + name, std::string("json: dropped")})
            expected.push_back(event);

    EXPECT_EQ(only({"json", "method"}, making_a_handler()), expected);
}

TEST_F(MethodRegistry, has_no_descriptions)
{
    making_a_handler();

    ASSERT_THAT(m_handler->GetMethods(), SizeIs(names_in_order.size()));
    for (const CallbackMethod* const method : m_handler->GetMethods())
        EXPECT_EQ(method->GetDescription().get(), nullptr) << method->GetName();
}

TEST_F(MethodRegistry, is_empty_when_the_service_was_not_found)
{
    rmi_layer().found.reset();

    EXPECT_THAT(only({"method"}, making_a_handler()), IsEmpty());
    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
}

TEST_F(MethodRegistry, is_empty_when_the_service_is_missing)
{
    rmi_layer().at["resolve"] = [] { throw rmi::SERVICE_NOT_FOUND(); };

    EXPECT_THAT(only({"method"}, making_a_handler()), IsEmpty());
    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
}

class RegisteredMethod : public MethodRegistry, public testing::WithParamInterface<OperationFacts>
{
};

INSTANTIATE_TEST_SUITE_P(Methods, RegisteredMethod, testing::ValuesIn(all_operations()),
                         [](const auto& each) { return each.param.name; });

TEST_P(RegisteredMethod, starts_the_remote_operation_of_its_name_on_the_proxy_that_was_found)
{
    making_a_handler();
    CallbackMethod* const method = m_handler->FindMethod(GetParam().name);
    ASSERT_NE(method, nullptr);
    const KX_JSON in = parse_json(request_for(GetParam()));
    KX_JSON out;
    const WatchedValues watched(in, out);

    const Events events = events_of([&] { EXPECT_EQ(method->Call(in, out), 0); });

    EXPECT_THAT(only({"call", "output"}, events),
                ElementsAre("output: CALL RPC " + GetParam().name + "\n", "call: " + call_line(GetParam())));
    EXPECT_EQ(out.get(), nullptr);
    // The very request object was read.
    EXPECT_EQ(only({"json"}, events).empty(), GetParam().parameters.empty());
    for (const std::string& event : only({"json"}, events)) {
        EXPECT_TRUE(event.find("get_json_object") == std::string::npos ||
                    event == "json: request.get_json_object(params)")
            << event;
    }
    m_proxy->forget_calls();
}

TEST_P(RegisteredMethod, lets_what_the_call_throws_reach_the_host)
{
    making_a_handler();
    rmi_layer().at["call"] = [] { throw rmi::TIMEOUT(); };
    const KX_JSON in = parse_json(request_for(GetParam()));
    KX_JSON out;

    // Recorded, so that the copies that nobody took over are freed when the test ends.
    events_of([&] { EXPECT_THROW(m_handler->FindMethod(GetParam().name)->Call(in, out), rmi::TIMEOUT); });
}

/// Stands in for the plug-in's interface.
struct Owner
{
    int note(const KX_JSON& in, KX_JSON& out)
    {
        seen_in = &in;
        seen_out = &out;
        return -42;
    }

    int fail(const KX_JSON&, KX_JSON&) { throw std::out_of_range("too far"); }

    const KX_JSON* seen_in = nullptr;
    const KX_JSON* seen_out = nullptr;
};

class MethodObject : public LookupTest
{
protected:
    Owner m_owner;
};

TEST_F(MethodObject, passes_both_arguments_and_the_result_through)
{
    RpcMethod<Owner> method("note", &m_owner, &Owner::note, KX_JSON());
    const KX_JSON in;
    KX_JSON out;

    const Events events = events_of([&] { EXPECT_EQ(method.Call(in, out), -42); });

    EXPECT_EQ(m_owner.seen_in, &in);
    EXPECT_EQ(m_owner.seen_out, &out);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(MethodObject, lets_exceptions_through)
{
    RpcMethod<Owner> method("fail", &m_owner, &Owner::fail, KX_JSON());
    KX_JSON out;

    EXPECT_THROW(method.Call(KX_JSON(), out), std::out_of_range);
}

TEST_F(MethodObject, has_a_name_and_a_description_of_its_own)
{
    std::string name = "note";
    KX_JSON description = parse_json(R"({"about":"notes"})");
    const RpcMethod<Owner> method(name, &m_owner, &Owner::note, description);

    name = "changed";
    description = KX_JSON();

    EXPECT_EQ(method.GetName(), "note");
    EXPECT_EQ(method.GetDescription().to_string(), R"({"about":"notes"})");
}

TEST_F(MethodObject, calls_the_function_it_was_made_with_on_the_owner_it_was_made_with)
{
    Owner other;
    RpcMethod<Owner> method("note", &other, &Owner::note, KX_JSON());
    KX_JSON out;

    method.Call(KX_JSON(), out);

    EXPECT_EQ(m_owner.seen_out, nullptr);
    EXPECT_EQ(other.seen_out, &out);
}

TEST_F(MethodObject, gives_copies_of_its_description_that_share_its_object)
{
    const KX_JSON description = parse_json(R"({"about":"notes"})");
    const RpcMethod<Owner> method("note", &m_owner, &Owner::note, description);

    const Events events = events_of([&] { EXPECT_EQ(method.GetDescription().get(), description.get()); });

    EXPECT_THAT(events, ElementsAre("json: copied", "json: dropped"));
}

TEST_F(MethodObject, drops_its_description_before_its_name)
{
    const std::string long_name(100, 'n');
    auto method = std::make_unique<RpcMethod<Owner>>(long_name, &m_owner, &Owner::note, KX_JSON());
    Events events;
    {
        // The name's memory is noted only when it is allocated while something records.
        const Recording recording;
        method = std::make_unique<RpcMethod<Owner>>(long_name, &m_owner, &Owner::note, KX_JSON());
    }

    events = events_of([&] { method.reset(); });

    EXPECT_THAT(events, ElementsAre("json: dropped", "memory: delete object", "memory: delete object"));
}

TEST_F(MethodObject, leaves_its_owner_alone_when_it_goes)
{
    {
        const RpcMethod<Owner> method("note", nullptr, &Owner::note, KX_JSON());
        EXPECT_EQ(method.GetName(), "note");
    }
    EXPECT_EQ(m_owner.seen_out, nullptr);
}

} // namespace
