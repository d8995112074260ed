// SPDX-License-Identifier: Apache-2.0
// What the objects consist of that hosts and RMI layers which were built apart from the plug-in hold or
// derive from: how many virtual functions a class has, which bases, and which members in which order.

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "VarnelRMI_operations.h"
#include "fakes/allocation_probe.h"
#include "framework/parse_json.h"
#include "generator/slot_of.h"
#include "handler_fixture.h"
#include "varnel_interf.h"
#include "varnel_reply_handlers.h"
#include <zeb/api/RpcMethod.h>

// The sanitizer would object to the very thing that these tests do.
#if defined(__clang__) || defined(__GNUC__)
#define LOOKS_THROUGH_ANOTHER_CLASS __attribute__((no_sanitize("undefined"), noinline))
#endif

namespace {

using namespace conformance;
using zeb::api::CallbackMethod;
using zeb::api::KX_RPCHandler;
using zeb::api::RpcMethod;
using zeb::api::data::KX_JSON;
using zeb::api::mdw::KX_DDS_RMI_RUNTIME;

namespace rmi = org::opensplice::DDS_RMI;

using ProxyHolder = zeb::api::mdw::KX_DDS_RMI_PROXY<Proxy>;

/// `Class` with one more virtual function, which comes behind those that there are.
template <class Class>
class Extended : public Class
{
public:
    virtual void one_more() {}
};

/// The destructor counts twice: it has an entry for objects that are to be deleted.
template <class Class>
std::ptrdiff_t virtual_functions_of()
{
    return slot_of(&Extended<Class>::one_more);
}

struct Owner
{
    int run(const KX_JSON&, KX_JSON&) { return 0; }
};

TEST(VirtualFunctions, of_handlers_are_destructor_and_isBound)
{
    EXPECT_EQ(virtual_functions_of<KX_RPCHandler>(), 3);
    EXPECT_EQ(virtual_functions_of<VarnelRPCHandler>(), 3);
}

TEST(VirtualFunctions, of_methods_are_destructor_Call_GetName_and_GetDescription)
{
    EXPECT_EQ(virtual_functions_of<CallbackMethod>(), 5);
    EXPECT_EQ(virtual_functions_of<RpcMethod<Owner>>(), 5);
}

TEST(VirtualFunctions, of_the_interface_are_its_destructor)
{
    EXPECT_EQ(virtual_functions_of<VarnelInterface>(), 2);
}

TEST(VirtualFunctions, of_values_and_holders_are_none)
{
    EXPECT_FALSE(std::is_polymorphic<KX_JSON>::value);
    EXPECT_FALSE(std::is_polymorphic<KX_DDS_RMI_RUNTIME>::value);
    EXPECT_FALSE(std::is_polymorphic<ProxyHolder>::value);
}

template <class Handler, class Base>
void expect_only_the_hook_overridden(const std::string& name)
{
    SCOPED_TRACE(name);
    EXPECT_EQ(virtual_functions_of<Handler>(), 3) << "the hook and the destructor";
    const bool waits_as_inherited =
        std::is_same<decltype(&Handler::asyncWait),
                     void (rmi::CAsyncReplyHandlerImpl::*)(DDS::QueryCondition*)>::value;
    const bool takes_replies_as_inherited =
        std::is_same<decltype(&Handler::handleReply), void (Base::*)(DDS::ReadCondition*)>::value;
    EXPECT_TRUE(waits_as_inherited);
    EXPECT_TRUE(takes_replies_as_inherited);
}

TEST(VirtualFunctions, that_reply_handlers_override_are_the_hooks_alone)
{
#define EXPECT_HOOK_ALONE(op, ...)                                                                           \
    expect_only_the_hook_overridden<MY_##op##_handler,                                                       \
                                    DDS_RMI::VarnelRMI::VarnelRMIService_##op##_Reply_Handler>(#op);
    FOR_EVERY_OPERATION(EXPECT_HOOK_ALONE)
#undef EXPECT_HOOK_ALONE
}

/// Would replace the operations if they were virtual.
class Replacement : public VarnelInterface
{
public:
#define REPLACED(op, ...)                                                                                    \
    int op(const KX_JSON&, KX_JSON&)                                                                         \
    {                                                                                                        \
        return -1;                                                                                           \
    }
    FOR_EVERY_OPERATION(REPLACED)
#undef REPLACED
};

class ObjectLayout : public LookupTest
{
};

TEST_F(ObjectLayout, has_no_place_for_the_operations_which_are_not_virtual)
{
    Replacement replacement;
    VarnelInterface& interface = replacement;
    interface.m_proxy = ProxyHandle(m_proxy);
    const KX_JSON in = parse_json(R"({"params": {"type": "1"}})");
    KX_JSON out;

#define EXPECT_NOT_REPLACED(op, ...) EXPECT_EQ(interface.op(in, out), 0) << #op;
    FOR_EVERY_OPERATION(EXPECT_NOT_REPLACED)
#undef EXPECT_NOT_REPLACED
    m_proxy->forget_calls();
}

TEST(Sizes, are_those_of_the_members_and_of_nothing_else)
{
    EXPECT_EQ(sizeof(KX_JSON), sizeof(json_object*));
    EXPECT_EQ(sizeof(CallbackMethod), sizeof(void*));
    EXPECT_EQ(sizeof(VarnelInterface), sizeof(void*) + sizeof(ProxyHandle));
    EXPECT_EQ(sizeof(KX_DDS_RMI_RUNTIME), sizeof(rmi::CRuntime_ref));
}

struct HolderShape
{
    rmi::CRuntime_ref runtime;
    ProxyHandle proxy;
    // As bytes and digits, because other members may stand here when the test fails.
    unsigned char is_found;
    std::string name;
    std::int32_t instance;
};

struct MethodShape
{
    void* table;
    Owner* owner;
    RpcMethod<Owner>::Method method;
    std::string name;
    KX_JSON description;
};

struct HandlerShape : KX_RPCHandler
{
    VarnelInterface interface;
    HolderShape holder;
    unsigned char is_bound;
};

/// That nothing has been written to the object behind its last member, where one more might have room.
template <class Shape, class Member>
LOOKS_THROUGH_ANOTHER_CLASS void expect_last(const Member& member, const Shape& shape)
{
    const auto* const end = reinterpret_cast<const unsigned char*>(&shape + 1);
    for (const auto* at = reinterpret_cast<const unsigned char*>(&member + 1); at != end; ++at)
        EXPECT_EQ(*at, garbage) << end - at << " bytes before the end";
}

LOOKS_THROUGH_ANOTHER_CLASS void expect_shape(const HolderShape& shape, Proxy* proxy,
                                              const std::string& instance)
{
    expect_last(shape.instance, shape);
    EXPECT_NE(shape.runtime.get(), nullptr);
    ASSERT_EQ(shape.proxy.get(), proxy);
    ASSERT_EQ(shape.is_found, proxy == nullptr ? 0 : 1);
    EXPECT_EQ(std::to_string(shape.instance), instance);
    EXPECT_EQ(shape.name, "VarnelDE_Server");
}

TEST_F(ObjectLayout, of_the_holder_is_runtime_proxy_flag_name_and_number)
{
    ASSERT_EQ(sizeof(ProxyHolder), sizeof(HolderShape));
    EXPECT_TRUE((std::is_convertible<ProxyHolder*, KX_DDS_RMI_RUNTIME*>::value)) << "a public base";
    std::unique_ptr<ProxyHolder> holder;

    events_of([&] { holder.reset(new ProxyHolder("VarnelDE_Server")); });

    expect_shape(reinterpret_cast<const HolderShape&>(*holder), m_proxy, m_instance);
}

TEST_F(ObjectLayout, of_a_holder_that_found_nothing_is_the_same)
{
    rmi_layer().found.reset();
    std::unique_ptr<ProxyHolder> holder;

    events_of([&] { holder.reset(new ProxyHolder("VarnelDE_Server")); });

    expect_shape(reinterpret_cast<const HolderShape&>(*holder), nullptr, m_instance);
}

LOOKS_THROUGH_ANOTHER_CLASS void expect_shape(const HandlerShape& shape, Proxy* proxy,
                                              const std::string& instance)
{
    ASSERT_EQ(shape.interface.m_proxy.get(), proxy);
    expect_shape(shape.holder, proxy, instance);
    EXPECT_EQ(shape.is_bound, proxy == nullptr ? 0 : 1);
    expect_last(shape.is_bound, shape);
}

TEST_F(ObjectLayout, of_the_handler_is_base_interface_holder_and_flag)
{
    ASSERT_EQ(sizeof(VarnelRPCHandler), sizeof(HandlerShape));
    std::unique_ptr<KX_RPCHandler> handler;

    events_of([&] { handler = make_handler(); });

    expect_shape(static_cast<const HandlerShape&>(*handler), m_proxy, m_instance);
}

TEST_F(ObjectLayout, of_an_unbound_handler_is_the_same)
{
    rmi_layer().found.reset();
    std::unique_ptr<KX_RPCHandler> handler;

    events_of([&] { handler = make_handler(); });

    expect_shape(static_cast<const HandlerShape&>(*handler), nullptr, m_instance);
}

LOOKS_THROUGH_ANOTHER_CLASS void expect_shape(const MethodShape& shape, const Owner* owner,
                                              const KX_JSON& description)
{
    ASSERT_EQ(shape.owner, owner);
    ASSERT_EQ(shape.method, &Owner::run);
    ASSERT_EQ(shape.description.get(), description.get());
    EXPECT_EQ(shape.name, "run");
}

TEST(MethodLayout, is_owner_function_name_and_description)
{
    ASSERT_EQ(sizeof(RpcMethod<Owner>), sizeof(MethodShape));
    Owner owner;
    const KX_JSON description = parse_json(R"({"about":"running"})");

    const RpcMethod<Owner> method("run", &owner, &Owner::run, description);

    expect_shape(reinterpret_cast<const MethodShape&>(method), &owner, description);
}

} // namespace
