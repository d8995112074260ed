// SPDX-License-Identifier: Apache-2.0
#include "json/json_value.h"

#include <climits>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>

namespace strict_json {
namespace {

/// Most ids are integers, for which json-c's way, with a text of its own beside the object, takes long.
std::optional<std::string> integer_text(json_object* object)
{
    if (!json_object_is_type(object, json_type_int))
        return std::nullopt;
    const std::int64_t value = json_object_get_int64(object);
    if (value == std::numeric_limits<std::int64_t>::max())
        return std::nullopt; // stands for all that are larger, too
    return std::to_string(value);
}

} // namespace

JsonValue json_string(std::string_view text)
{
    if (text.size() >= INT_MAX)
        throw std::bad_alloc();
    JsonValue value(json_object_new_string_len(text.data(), static_cast<int>(text.size())));
    if (value == nullptr)
        throw std::bad_alloc();
    return value;
}

std::string_view string_of(json_object* string)
{
    return {json_object_get_string(string), static_cast<std::size_t>(json_object_get_string_len(string))};
}

void put_member(json_object* object, const char* key, JsonValue value)
{
    if (json_object_object_add(object, key, value.get()) != 0)
        throw std::bad_alloc();
    static_cast<void>(value.release()); // now the object's
}

void append_element(json_object* array, JsonValue value)
{
    if (json_object_array_add(array, value.get()) != 0)
        throw std::bad_alloc();
    static_cast<void>(value.release()); // now the array's
}

json_object* member(json_object* object, const char* key)
{
    json_object* found = nullptr;
    json_object_object_get_ex(object, key, &found);
    return found;
}

std::string json_text(json_object* object)
{
    if (const auto text = integer_text(object))
        return *text;
    constexpr int compact = JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE;
    std::size_t length = 0;
    const char* text = json_object_to_json_string_length(object, compact, &length);
    if (text == nullptr)
        throw std::bad_alloc();
    return {text, length};
}

} // namespace strict_json
