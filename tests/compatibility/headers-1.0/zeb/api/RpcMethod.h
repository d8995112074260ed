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
/// mutable state, so concurrent calls are as safe as the member function is.
template <class T>
class RpcMethod : public CallbackMethod
{
public:
    typedef int (T::*Method)(const data::KX_JSON& in, data::KX_JSON& out);

    RpcMethod(const std::string& name, T* owner, Method method, const data::KX_JSON& description)
        : m_owner(owner), m_method(method), m_name(name), m_description(description)
    {
    }

    int Call(const data::KX_JSON& in, data::KX_JSON& out) override { return (m_owner->*m_method)(in, out); }

    std::string GetName() const override { return m_name; }

    /// A copy with objects of its own, because counted references to shared ones belong to one thread.
    data::KX_JSON GetDescription() const override { return m_description.deep_copy(); }

private:
    T* m_owner;
    Method m_method;
    std::string m_name;
    data::KX_JSON m_description;
};

} // namespace api
} // namespace zeb

#endif
