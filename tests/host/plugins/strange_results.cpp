// SPDX-License-Identifier: Apache-2.0
// A plug-in whose methods answer what is no JSON.
#include <json-c/json_object.h>

#include <limits>
#include <stdexcept>

#include "zeb/api/KX_RPCHandler.h"
#include "zeb/api/RpcMethod.h"

namespace {

using Json = zeb::api::data::KX_JSON;

class Methods
{
public:
    int not_a_number(const Json& /*in*/, Json& out)
    {
        return put(out, json_object_new_double(std::numeric_limits<double>::quiet_NaN()));
    }
    int infinity(const Json& /*in*/, Json& out)
    {
        return put(out, json_object_new_double(-std::numeric_limits<double>::infinity()));
    }
    int no_text(const Json& /*in*/, Json& out) { return put(out, json_object_new_string("caf\xe9")); }
    int no_key(const Json& /*in*/, Json& out)
    {
        json_object* object = json_object_new_object();
        json_object_object_add(object, "caf\xe9", json_object_new_int(1));
        return put(out, object);
    }
    int throws_no_text(const Json& /*in*/, Json& /*out*/) { throw std::invalid_argument("caf\xe9"); }

private:
    static int put(Json& out, json_object* result)
    {
        json_object_object_add(out.get(), "result", result);
        return 0;
    }
};

class Handler : public zeb::api::KX_RPCHandler
{
public:
    Handler()
    {
        add("not_a_number", &Methods::not_a_number);
        add("infinity", &Methods::infinity);
        add("no_text", &Methods::no_text);
        add("no_key", &Methods::no_key);
        add("throws_no_text", &Methods::throws_no_text);
    }

private:
    void add(const char* name, int (Methods::*method)(const Json&, Json&))
    {
        AddMethod(new zeb::api::RpcMethod<Methods>(name, &m_methods, method, Json(nullptr)));
    }

    Methods m_methods;
};

} // namespace

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new Handler;
}
