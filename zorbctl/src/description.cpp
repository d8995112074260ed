// SPDX-License-Identifier: Apache-2.0
#include "description.h"

#include <algorithm>

#include "failure.h"

namespace zorbctl {
namespace {

/// The types that a schema names, in their order; none when it names none.
std::vector<std::string> types_of(const Json& schema)
{
    std::vector<std::string> types;
    if (!schema.is_object())
        return types;
    const Json named = schema.value("type", Json());
    if (named.is_string())
        types.push_back(named);
    else if (named.is_array())
        types = named.get<std::vector<std::string>>();
    for (const char* choice : {"anyOf", "oneOf"})
        for (const Json& one : schema.value(choice, Json::array()))
            for (const std::string& type : types_of(one))
                types.push_back(type);
    return types;
}

bool is_of_type(const Json& value, const std::string& type)
{
    return (type == "boolean" && value.is_boolean()) || (type == "integer" && value.is_number_integer()) ||
           (type == "number" && value.is_number()) || (type == "null" && value.is_null()) ||
           (type == "array" && value.is_array()) || (type == "object" && value.is_object());
}

/// The text as the first type that it can be; a text can always be a string.
Json typed(const std::string& key, const std::string& text, const Json& schema)
{
    const std::vector<std::string> types = types_of(schema);
    const Json value = Json::parse(text, nullptr, false);
    for (const std::string& type : types) {
        if (type == "string")
            return text;
        if (!value.is_discarded() && is_of_type(value, type))
            return value;
    }
    if (types.empty())
        return value.is_discarded() ? Json(text) : value;
    throw Failure(exit_usage, key + " must be of type " + type_text(schema) + ", not '" + text + "'");
}

Json schema_of(const std::string& key, const Json& method)
{
    for (const Json& param : method.value("params", Json::array()))
        if (param.value("name", "") == key)
            return param.value("schema", Json::object());
    return Json::object(); // the host says what it thinks of an unknown key
}

} // namespace

Json find_method(const Json& document, const std::string& name)
{
    for (const Json& method : document.value("methods", Json::array()))
        if (method.value("name", "") == name)
            return method;
    throw Failure(exit_usage, "the host has no method " + name + "; zorbctl list shows those that it has");
}

Json params_from(const std::vector<std::string>& texts, const Json& method)
{
    Json params;
    for (const std::string& text : texts) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw Failure(exit_usage, "'" + text + "' is not of the form key=value");
        const std::string key = text.substr(0, equals);
        params[key] = typed(key, text.substr(equals + 1), schema_of(key, method));
    }
    return params;
}

std::string type_text(const Json& schema)
{
    std::string text;
    for (const std::string& type : types_of(schema))
        text += (text.empty() ? "" : " or ") + type;
    return text.empty() ? "any" : text;
}

} // namespace zorbctl
