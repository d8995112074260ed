// SPDX-License-Identifier: Apache-2.0
#ifndef STRICT_JSON_JSON_VALUE_H
#define STRICT_JSON_JSON_VALUE_H

#include <json-c/json_object.h>

#include <memory>
#include <string>
#include <string_view>

namespace strict_json {

struct JsonRelease
{
    void operator()(json_object* object) const noexcept { json_object_put(object); }
};

/// Owns one reference to a json-c object. Null is JSON's own null, so emptiness says nothing about success.
///
/// json-c counts references without atomic operations: an object and all that hangs on it belong to one
/// thread at a time.
using JsonValue = std::unique_ptr<json_object, JsonRelease>;

/// A JSON string of all of `text`, NUL characters included. Throws std::bad_alloc.
JsonValue json_string(std::string_view text);

/// All characters of a JSON string.
std::string_view string_of(json_object* string);

/// Puts `value` into `object` as its member `key`. Throws std::bad_alloc.
void put_member(json_object* object, const char* key, JsonValue value);

/// Puts `value` at the end of a JSON array. Throws std::bad_alloc.
void append_element(json_object* array, JsonValue value);

/// The member `key` of a JSON object, still owned by it; null when it is missing, or is JSON null.
json_object* member(json_object* object, const char* key);

/// Compact JSON text. Throws std::bad_alloc.
std::string json_text(json_object* object);

} // namespace strict_json

#endif
