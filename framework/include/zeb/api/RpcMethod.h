// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_RPCMETHOD_H
#define ZEB_API_RPCMETHOD_H

#include <string>

#include "zeb/api/CallbackMethod.h"
#include "zeb/api/data/KX_JSON.h"

namespace zeb {
namespace api {

/// A JSON-RPC method that is a member function of an object of type T.
///
/// The owner is not owned: it must live for as long as the method may be called. The method object has no
/// mutable state, so concurrent calls are as safe as the member function is. Only the description's copies
/// belong to one thread at a time, because they share one counted object.
///
/// The description is for people and programs that ask the host what a method does (`rpc.discover`, the
/// console, zorbctl). It is one of these:
///   - an empty value: the method says nothing of itself
///   - a JSON string: what the method does, the "description" of its OpenRPC method object
///   - a JSON object: members of its OpenRPC method object, such as "summary", "params" and "result"
/// What it says goes before the method's entry in the file beside the plug-in, NAME.openrpc.json for NAME.so.
/// zorbd checks the params of methods with an entry in that file, and of no others. An example:
///
///     KX_JSON::parse(R"({"summary": "The temperature of a room, in degrees Celsius"})")
template <class T>
class RpcMethod : public CallbackMethod
{
public:
    /// The method: what CallbackMethod::Call says of `in`, `out` and what is returned holds for it.
    typedef int (T::*Method)(const data::KX_JSON& in, data::KX_JSON& out);

    /// `name` is the JSON-RPC method name.
    RpcMethod(const std::string& name, T* owner, Method method, const data::KX_JSON& description)
        : m_owner(owner), m_method(method), m_name(name), m_description(description)
    {
    }

    int Call(const data::KX_JSON& in, data::KX_JSON& out) override { return (m_owner->*m_method)(in, out); }

    std::string GetName() const override { return m_name; }

    data::KX_JSON GetDescription() const override { return m_description; }

private:
    T* m_owner;
    Method m_method;
    std::string m_name;
    data::KX_JSON m_description;
};

} // namespace api
} // namespace zeb

#endif
