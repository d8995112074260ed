// SPDX-License-Identifier: Apache-2.0
#include "plugins/discovery.h"

#include <json-c/json_tokener.h>
#include <json-c/linkhash.h>

#include <new>

#include "system/version.h"
#include "zeb/api/CallbackMethod.h"
#include "json/json_quote.h"
#include "json/json_value.h"

namespace zorbd {

using namespace strict_json;

namespace {

/// What OpenRPC demands of every method, for one that tells nothing of itself.
JsonValue default_method_object()
{
    JsonValue object(json_tokener_parse(R"({
        "name": "",
        "params": [],
        "result": {"name": "result", "schema": {}}
    })"));
    if (object == nullptr)
        throw std::bad_alloc();
    return object;
}

void put_members(json_object* object, json_object* members)
{
    json_object_object_foreach(members, key, value)
        put_member(object, key, JsonValue(json_object_get(value)));
}

void put_description(json_object* object, json_object* description)
{
    if (json_object_is_type(description, json_type_object))
        put_members(object, description);
    else if (json_object_is_type(description, json_type_string))
        put_member(object, "description", JsonValue(json_object_get(description)));
}

} // namespace

JsonValue describe_method(const std::string& name, const zeb::api::CallbackMethod& method,
                          json_object* described)
{
    JsonValue object = default_method_object();
    put_description(object.get(), described);
    const zeb::api::data::KX_JSON description = method.GetDescription().deep_copy();
    put_description(object.get(), description.get());
    put_member(object.get(), "name", json_string(name));
    return object;
}

std::string openrpc_document(const std::vector<std::string>& method_objects,
                             const std::vector<std::string>& servers)
{
    std::string document = R"({"openrpc":"1.2.6","info":{"title":"zorbd","version":")" +
                           std::string(version) + R"("},"servers":[)";
    const char* separator = "";
    for (const std::string& server : servers) {
        document += separator + (R"({"name":"zorbd","url":)" + quoted_json(server) + '}');
        separator = ",";
    }
    document += R"(],"methods":[)";
    separator = "";
    for (const std::string& method : method_objects) {
        document += separator + method;
        separator = ",";
    }
    return document + "]}";
}

} // namespace zorbd
