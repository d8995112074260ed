// SPDX-License-Identifier: Apache-2.0
// The tables of virtual functions, through which hosts and RMI layers that were built apart from the plug-in
// call it: each test calls through a class of the same shape that shares no header with the plug-in.

#include <gmock/gmock.h>

#include <stdexcept>

#include "VarnelRMI_operations.h"
#include "handler_fixture.h"
#include "operation_facts.h"
#include "varnel_reply_handlers.h"
#include <zeb/api/CallbackMethod.h>

// The sanitizer would object to the very thing that these tests do.
#if defined(__clang__) || defined(__GNUC__)
#define CALLS_THROUGH_ANOTHER_CLASS __attribute__((no_sanitize("undefined"), noinline))
#endif

namespace shapes {

using Json = zeb::api::data::KX_JSON;

class Handler
{
public:
    virtual ~Handler();
    virtual bool is_bound() = 0;
};

class Method
{
public:
    virtual ~Method();
    virtual int call(const Json& in, Json& out) = 0;
    virtual std::string name() const = 0;
    virtual Json description() const = 0;
};

class Interface
{
public:
    virtual ~Interface();
};

/// A reply handler as its own class.
class OwnHandler
{
public:
    virtual void reply(int result) = 0;
    virtual ~OwnHandler();
};

/// A reply handler as the RMI layer sees it.
class LayerHandler
{
public:
    virtual ~LayerHandler();
    virtual void async_wait(DDS::QueryCondition* condition) = 0;
    virtual void handle_reply(DDS::ReadCondition* condition) = 0;
    virtual void reply(int result) = 0;
};

Handler::~Handler() = default;
Method::~Method() = default;
Interface::~Interface() = default;
OwnHandler::~OwnHandler() = default;
LayerHandler::~LayerHandler() = default;

} // namespace shapes

namespace {

using namespace conformance;
using testing::ElementsAre;

template <class Shape>
Shape* seen_as(void* object)
{
    return static_cast<Shape*>(object);
}

class SlotOrder : public LookupTest
{
};

CALLS_THROUGH_ANOTHER_CLASS bool ask(shapes::Handler* handler)
{
    return handler->is_bound();
}

template <class Shape>
CALLS_THROUGH_ANOTHER_CLASS void destroy(Shape* object)
{
    delete object;
}

TEST_F(SlotOrder, of_the_handler_is_destructor_then_isBound)
{
    shapes::Handler* handler = nullptr;
    events_of([&] { handler = seen_as<shapes::Handler>(make_handler().release()); });

    EXPECT_THAT(events_of([&] { EXPECT_TRUE(ask(handler)); }),
                ElementsAre("output: VarnelRPCHandler isBound:1\n"));
    EXPECT_THAT(only({"output"}, events_of([&] { destroy(handler); })),
                ElementsAre("output: VarnelRPCHandler destructor\n", "output: KX_DDS_RMI_PROXY destroy\n",
                            "output: VarnelInterface destructor\n"));
    EXPECT_EQ(objects_left(), 0U) << "its memory has not been freed";
}

CALLS_THROUGH_ANOTHER_CLASS int call(shapes::Method* method, const shapes::Json& in, shapes::Json& out)
{
    return method->call(in, out);
}

CALLS_THROUGH_ANOTHER_CLASS std::string name_of(const shapes::Method* method)
{
    return method->name();
}

CALLS_THROUGH_ANOTHER_CLASS shapes::Json description_of(const shapes::Method* method)
{
    return method->description();
}

TEST_F(SlotOrder, of_a_method_is_destructor_Call_GetName_GetDescription)
{
    const auto handler = make_handler();
    auto* const method = seen_as<shapes::Method>(handler->FindMethod("network_get_info"));
    const shapes::Json in;
    shapes::Json out;

    EXPECT_THAT(only({"call"}, events_of([&] { EXPECT_EQ(call(method, in, out), 0); })),
                ElementsAre("call: network_get_info()"));
    EXPECT_EQ(name_of(method), "network_get_info");
    EXPECT_EQ(description_of(method).get(), nullptr);
    m_proxy->forget_calls();
}

TEST_F(SlotOrder, of_the_interface_begins_with_its_destructor)
{
    EXPECT_THAT(events_of([&] { destroy(seen_as<shapes::Interface>(new_interface())); }),
                ElementsAre("memory: new object", "output: VarnelInterface constructor\n",
                            "output: VarnelInterface destructor\n", "memory: delete object"));
}

TEST_F(SlotOrder, leaves_the_proxy_right_behind_the_interface_s_table)
{
    void* const interface = new_interface();

    EXPECT_EQ(static_cast<void*>(&proxy_of(interface)),
              static_cast<void*>(static_cast<char*>(interface) + sizeof(void*)));
    EXPECT_EQ(proxy_of(interface).get(), nullptr);
    delete_interface(interface);
}

template <class Shape>
CALLS_THROUGH_ANOTHER_CLASS void reply(Shape* handler, int result)
{
    handler->reply(result);
}

CALLS_THROUGH_ANOTHER_CLASS void wait_for(shapes::LayerHandler* handler, DDS::QueryCondition* condition)
{
    handler->async_wait(condition);
}

template <class Handler>
Events events_of_own_slots()
{
    const Recording recording;
    auto* const own = seen_as<shapes::OwnHandler>(new Handler);
    reply(own, 5);
    destroy(own);
    return recording.all();
}

template <class Handler, class Base>
Events events_of_layer_slots()
{
    DDS::QueryCondition condition;
    const Recording recording;
    auto* const seen = seen_as<shapes::LayerHandler>(static_cast<Base*>(new Handler));
    wait_for(seen, &condition);
    reply(seen, 6);
    destroy(seen);
    return recording.all();
}

/// The same for each operation, by its name and classes.
template <class Handler, class Base>
void expect_slots_of_handler(const std::string& name)
{
    SCOPED_TRACE(name);
    const std::string text = "output: " + facts_of(name).reply_text;

    EXPECT_THAT(events_of_own_slots<Handler>(), ElementsAre("memory: new object", "mutex: made", text + "5\n",
                                                            "mutex: destroyed", "memory: delete object"));
    EXPECT_THAT((events_of_layer_slots<Handler, Base>()),
                ElementsAre("memory: new object", "mutex: made", text + "6\n", "mutex: destroyed",
                            "memory: delete object"));
}

#define EXPECT_SLOTS(op, ...)                                                                                \
    expect_slots_of_handler<MY_##op##_handler, DDS_RMI::VarnelRMI::VarnelRMIService_##op##_Reply_Handler>(   \
        #op);

TEST_F(SlotOrder, of_a_reply_handler_is_hook_then_destructor_and_through_its_base_the_hook_comes_last)
{
    FOR_EVERY_OPERATION(EXPECT_SLOTS)
}

} // namespace
