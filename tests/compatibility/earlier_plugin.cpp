// SPDX-License-Identifier: Apache-2.0
// A plug-in that is compiled with the headers of the first release, and uses all that they declare.
#include <stdexcept>
#include <string>
#include <utility>

#include <zeb/api/CallbackMethod.h>
#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/RpcMethod.h>
#include <zeb/api/data/KX_JSON.h>

using zeb::api::data::KX_JSON;

namespace {

KX_JSON params_of(const KX_JSON& in)
{
    return in.get_json_object("params");
}

/// A method without RpcMethod: its virtual functions are called through the host's declarations.
class Sum : public zeb::api::CallbackMethod
{
public:
    int Call(const KX_JSON& in, KX_JSON& /*out*/) override
    {
        return params_of(in).get_json_int("first") + params_of(in).get_json_int("second");
    }

    std::string GetName() const override { return "sum"; }

    KX_JSON GetDescription() const override
    {
        KX_JSON description;
        description.set_json_string("summary", "Adds two numbers.");
        return description;
    }
};

class EarlierPlugin : public zeb::api::KX_RPCHandler
{
public:
    EarlierPlugin() : m_bound(true)
    {
        AddMethod(new Sum);
        add("compose", &EarlierPlugin::compose);
        add("refuse", &EarlierPlugin::refuse);
        add("list_methods", &EarlierPlugin::list_methods);
    }

    bool isBound() override { return m_bound; }

private:
    typedef int (EarlierPlugin::*Method)(const KX_JSON& in, KX_JSON& out);

    void add(const std::string& name, Method method)
    {
        AddMethod(new zeb::api::RpcMethod<EarlierPlugin>(name, this, method, KX_JSON()));
    }

    int compose(const KX_JSON& in, KX_JSON& out)
    {
        const KX_JSON params = params_of(in);
        KX_JSON copied(params), assigned, moved(params.deep_copy()), result;
        assigned = copied;
        moved.set_json_int("number", 7);
        result.set_json_object("deep_copy", moved);
        result.set_json_string("text", assigned.get_json_string("text"));
        result.set_json_string("all", KX_JSON(copied.get()).to_string());
        result.set_json_int("has_text", copied.has_key("text") ? 1 : 0);
        copied = std::move(result);
        out.set_json_object("result", copied);
        return 0;
    }

    int refuse(const KX_JSON& /*in*/, KX_JSON& /*out*/) { throw std::invalid_argument("refused"); }

    int list_methods(const KX_JSON& /*in*/, KX_JSON& out)
    {
        std::string names;
        for (zeb::api::CallbackMethod* method : GetMethods())
            names += FindMethod(method->GetName())->GetName() + ' ';
        out.set_json_string("result", names);
        return 0;
    }

    bool m_bound;
};

} // namespace

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new EarlierPlugin;
}
