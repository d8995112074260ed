// SPDX-License-Identifier: Apache-2.0
#include "jsonrpc/rpc_request.h"

namespace zorbd {

using namespace strict_json;

namespace {

bool is_valid_id(json_object* id)
{
    switch (json_object_get_type(id)) {
    case json_type_null:
    case json_type_int:
    case json_type_double:
    case json_type_string:
        return true;
    default:
        return false;
    }
}

bool is_string(json_object* value, std::string_view text)
{
    return json_object_is_type(value, json_type_string) && string_of(value) == text;
}

bool is_structured(json_object* value)
{
    return json_object_is_type(value, json_type_object) || json_object_is_type(value, json_type_array);
}

/// What is wrong with the request object; null when nothing is.
const char* find_fault(json_object* request)
{
    json_object* id = nullptr;
    json_object* params = nullptr;
    if (!is_string(member(request, "jsonrpc"), "2.0"))
        return "\"jsonrpc\" must be \"2.0\"";
    if (!json_object_is_type(member(request, "method"), json_type_string))
        return "\"method\" must be a string";
    if (json_object_object_get_ex(request, "params", &params) != 0 && !is_structured(params))
        return "\"params\" must be an object or an array";
    if (json_object_object_get_ex(request, "id", &id) != 0 && !is_valid_id(id))
        return "\"id\" must be a string, a number or null";
    return nullptr;
}

/// The id as it must be echoed; none when the request has none.
std::optional<std::string> id_text(json_object* request)
{
    json_object* id = nullptr;
    if (json_object_object_get_ex(request, "id", &id) == 0)
        return std::nullopt;
    return is_valid_id(id) ? json_text(id) : "null";
}

} // namespace

std::variant<RpcRequest, InvalidRequest> read_request(json_object* value)
{
    if (!json_object_is_type(value, json_type_object))
        return InvalidRequest{"a request must be an object", "null"};
    std::optional<std::string> id = id_text(value);
    if (const char* fault = find_fault(value))
        return InvalidRequest{fault, id.value_or("null")};
    return RpcRequest{std::string(string_of(member(value, "method"))), std::move(id)};
}

} // namespace zorbd
