// SPDX-License-Identifier: Apache-2.0
#include "plugins/param_check.h"

#include <json-c/linkhash.h>

#include <algorithm>
#include <regex>
#include <stdexcept>
#include <utility>

// The library ends the process unless it is told to throw, and its headers are not held to our warnings.
#define VALIJSON_USE_EXCEPTIONS 1
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wconversion"
#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>
#pragma GCC diagnostic pop

namespace zorbd {

using namespace strict_json;

namespace {

using Json = nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

Json converted(json_object* value);

Json converted_object(json_object* object)
{
    Json copy = Json::object();
    json_object_object_foreach(object, key, one) copy[key] = converted(one);
    return copy;
}

Json converted_array(json_object* array)
{
    Json copy = Json::array();
    for (std::size_t i = 0; i < json_object_array_length(array); ++i)
        copy.push_back(converted(json_object_array_get_idx(array, i)));
    return copy;
}

/// The value as the schema library takes it.
Json converted(json_object* value)
{
    switch (json_object_get_type(value)) {
    case json_type_boolean:
        return json_object_get_boolean(value) != 0;
    case json_type_int:
        return json_object_get_int64(value);
    case json_type_double:
        return json_object_get_double(value);
    case json_type_string:
        return std::string(string_of(value));
    case json_type_object:
        return converted_object(value);
    case json_type_array:
        return converted_array(value);
    default:
        return nullptr;
    }
}

/// Tries its pattern, and sees that no long text is matched against it.
void bound_pattern(Json& schema)
{
    const auto pattern = schema.find("pattern");
    if (pattern == schema.end() || !pattern->is_string())
        return;
    static_cast<void>(std::regex(pattern->get<std::string>()));
    const auto allowed = schema.find("maxLength");
    if (allowed == schema.end() || !allowed->is_number() || *allowed > ParamCheck::longest_matched_text)
        schema["maxLength"] = ParamCheck::longest_matched_text;
}

void bound_patterns(Json& schema)
{
    if (schema.is_object())
        bound_pattern(schema);
    for (Json& part : schema)
        if (part.is_structured())
            bound_patterns(part);
}

std::string text_member(json_object* object, const char* key)
{
    json_object* text = member(object, key);
    return json_object_is_type(text, json_type_string) ? std::string(string_of(text)) : std::string();
}

std::string in_quotes(const std::string& name)
{
    return '"' + name + '"';
}

} // namespace

struct ParamCheck::Param
{
    std::string name;
    std::string meaning; ///< for people; may be empty
    bool is_required = false;
    valijson::Schema schema;

    bool admits(const Json& value, valijson::ValidationResults* results) const
    {
        static thread_local valijson::Validator validator; // keeps the patterns that it has compiled
        return validator.validate(schema, Adapter(value), results);
    }

    /// What is wrong with the value; nothing when it is as it should be.
    std::optional<std::string> find_fault(json_object* value) const
    {
        const Json copy = converted(value);
        if (admits(copy, nullptr))
            return std::nullopt;
        std::string fault = in_quotes(name) + " is not valid";
        if (!meaning.empty())
            fault += ". " + meaning;
        return fault + reasons(copy);
    }

private:
    std::string reasons(const Json& value) const
    {
        if (value.is_string() && value.get_ref<const std::string&>().size() > longest_explained)
            return {};
        valijson::ValidationResults results;
        valijson::ValidationResults::Error error;
        admits(value, &results);
        return results.popError(error) ? " (" + error.description + ')' : std::string();
    }

    /// To say all that is wrong with a value, the library looks at all of it, also at what is too long.
    static constexpr std::size_t longest_explained = longest_matched_text;
};

ParamCheck::ParamCheck(json_object* params)
{
    for (std::size_t i = 0; i < json_object_array_length(params); ++i) {
        json_object* described = json_object_array_get_idx(params, i);
        auto param = std::make_unique<Param>();
        param->name = text_member(described, "name");
        param->meaning = text_member(described, "description");
        param->is_required = json_object_get_boolean(member(described, "required")) != 0;
        if (param->name.empty())
            throw std::invalid_argument("parameter " + std::to_string(i + 1) + " has no name");
        try {
            Json schema = converted(member(described, "schema"));
            bound_patterns(schema);
            valijson::SchemaParser(valijson::SchemaParser::kDraft7)
                .populateSchema(Adapter(schema.is_null() ? Json::object() : schema), param->schema);
        } catch (const std::exception& error) {
            throw std::invalid_argument("the schema of " + in_quotes(param->name) + ": " + error.what());
        }
        m_params.push_back(std::move(param));
    }
}

ParamCheck::~ParamCheck() = default;

std::optional<std::string> ParamCheck::apply(json_object* request) const
{
    if (json_object_is_type(member(request, "params"), json_type_array))
        if (auto fault = name_positions(request))
            return fault;
    return check_named(member(request, "params"));
}

std::optional<std::string> ParamCheck::name_positions(json_object* request) const
{
    json_object* positions = member(request, "params");
    const std::size_t count = json_object_array_length(positions);
    if (count > m_params.size())
        return std::to_string(count) + " parameters were given; " + names();
    JsonValue named(json_object_new_object());
    for (std::size_t i = 0; i < count; ++i)
        put_member(named.get(), m_params[i]->name.c_str(),
                   JsonValue(json_object_get(json_object_array_get_idx(positions, i))));
    put_member(request, "params", std::move(named));
    return std::nullopt;
}

std::optional<std::string> ParamCheck::check_named(json_object* params) const
{
    std::size_t known = 0;
    for (const auto& param : m_params) {
        json_object* value = nullptr;
        if (params == nullptr || json_object_object_get_ex(params, param->name.c_str(), &value) == 0) {
            if (param->is_required)
                return in_quotes(param->name) + " is missing; " + names();
            continue;
        }
        ++known;
        if (auto fault = param->find_fault(value))
            return fault;
    }
    if (params == nullptr || static_cast<std::size_t>(json_object_object_length(params)) == known)
        return std::nullopt;
    json_object_object_foreach(params, key, value)
    {
        static_cast<void>(value);
        if (find(key) == nullptr)
            return in_quotes(key) + " is unknown; " + names();
    }
    return std::nullopt;
}

const ParamCheck::Param* ParamCheck::find(const std::string& name) const
{
    const auto found = std::find_if(m_params.begin(), m_params.end(),
                                    [&name](const auto& param) { return param->name == name; });
    return found == m_params.end() ? nullptr : found->get();
}

std::string ParamCheck::names() const
{
    std::string text = "the method takes ";
    if (m_params.empty())
        return text + "none";
    for (const auto& param : m_params)
        text += (param == m_params.front() ? "" : ", ") + in_quotes(param->name);
    return text;
}

} // namespace zorbd
