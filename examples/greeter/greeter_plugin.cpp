// SPDX-License-Identifier: Apache-2.0
// A whole plug-in for zorbd: one method, "greet", that answers a greeting.
#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/RpcMethod.h>

using zeb::api::data::KX_JSON;

class Greeter : public zeb::api::KX_RPCHandler
{
public:
    Greeter() { AddMethod(new zeb::api::RpcMethod<Greeter>("greet", this, &Greeter::greet, KX_JSON())); }

private:
    int greet(const KX_JSON& in, KX_JSON& out)
    {
        out.set_json_string("result", "Hello, " + in.get_json_object("params").get_json_string("name") + "!");
        return 0;
    }
};

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new Greeter;
}
