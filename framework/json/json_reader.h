// SPDX-License-Identifier: Apache-2.0
#ifndef STRICT_JSON_JSON_READER_H
#define STRICT_JSON_JSON_READER_H

#include <stdexcept>
#include <string>
#include <string_view>

#include "json/json_value.h"

namespace strict_json {

/// A text that is not JSON, or that this host does not take; what() names the cause and the byte.
class JsonSyntaxError : public std::runtime_error
{
public:
    JsonSyntaxError(const std::string& cause, std::size_t offset);
};

/// Reads exactly one JSON text (RFC 8259, UTF-8), in which arrays and objects are nested at most `max_depth`
/// deep. What json-c cannot keep exactly is refused: integers beyond 64 bits, numbers beyond a double, NUL
/// characters in member names. Throws JsonSyntaxError, and std::bad_alloc.
JsonValue parse_json(const std::string& text, int max_depth);

/// Whether a text is JSON, and all of its strings are UTF-8.
bool is_json(const std::string& text);

} // namespace strict_json

#endif
