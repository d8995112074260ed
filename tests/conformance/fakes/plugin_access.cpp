// SPDX-License-Identifier: Apache-2.0
#include "plugin_access.h"

#include <map>
#include <type_traits>

#include "VarnelRMI_operations.h"
#include "varnel_interf.h"

// The methods in a handler's table point at its interface, so it stays where it is.
static_assert(!std::is_copy_constructible<VarnelRPCHandler>::value, "");
static_assert(!std::is_move_constructible<VarnelRPCHandler>::value, "");
static_assert(!std::is_copy_assignable<VarnelRPCHandler>::value, "");
static_assert(!std::is_move_assignable<VarnelRPCHandler>::value, "");

namespace conformance {
namespace {

using Member = int (VarnelInterface::*)(const zeb::api::data::KX_JSON&, zeb::api::data::KX_JSON&);

const std::map<std::string, Member>& members()
{
#define NAME_AND_MEMBER(op, ...) {#op, &VarnelInterface::op},
    static const std::map<std::string, Member> by_name = {FOR_EVERY_OPERATION(NAME_AND_MEMBER)};
#undef NAME_AND_MEMBER
    return by_name;
}

/// An explicit instantiation may name what is private.
template <void (VarnelRPCHandler::*member)()>
struct PrivateMember
{
    friend void call_private_member(VarnelRPCHandler& handler) { (handler.*member)(); }
};

void call_private_member(VarnelRPCHandler& handler);
template struct PrivateMember<&VarnelRPCHandler::BuildInterface>;

} // namespace

Operations::Operations(Proxy* proxy) : m_interface(new VarnelInterface)
{
    m_interface->m_proxy = ProxyHandle(proxy);
    members(); // makes the table now, not while a test records
}

Operations::~Operations() = default;

int Operations::run(const std::string& name, const zeb::api::data::KX_JSON& in, zeb::api::data::KX_JSON& out)
{
    const Member member = members().at(name);
    return (m_interface.get()->*member)(in, out);
}

std::unique_ptr<zeb::api::KX_RPCHandler> make_handler()
{
    return std::unique_ptr<zeb::api::KX_RPCHandler>(RPCHandler());
}

void build_interface(zeb::api::KX_RPCHandler& handler)
{
    call_private_member(dynamic_cast<VarnelRPCHandler&>(handler));
}

void* new_interface()
{
    return new VarnelInterface;
}

void delete_interface(void* interface)
{
    delete static_cast<VarnelInterface*>(interface);
}

ProxyHandle& proxy_of(void* interface)
{
    return static_cast<VarnelInterface*>(interface)->m_proxy;
}

class Holder::Impl : public zeb::api::mdw::KX_DDS_RMI_PROXY<Proxy>
{
public:
    using KX_DDS_RMI_PROXY::KX_DDS_RMI_PROXY;
};

Holder::Holder(const std::string& service_name) : m_impl(new Impl(service_name)) {}

Holder::~Holder() = default;

bool Holder::is_proxy_found()
{
    return m_impl->isProxyFound();
}

ProxyHandle Holder::proxy()
{
    return m_impl->getProxy();
}

} // namespace conformance
