// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_JSON_MATCHERS_H
#define TESTS_HOST_JSON_MATCHERS_H

#include <gmock/gmock.h>

#include <string>

#include "json/json_reader.h"

namespace host_test {

inline strict_json::JsonValue parsed(const std::string& text)
{
    return strict_json::parse_json(text, 64);
}

/// Takes the particulars of errors away, of which JSON-RPC says nothing.
inline void drop_error_data(json_object* value)
{
    if (json_object_is_type(value, json_type_array)) {
        for (std::size_t i = 0; i < json_object_array_length(value); ++i)
            drop_error_data(json_object_array_get_idx(value, i));
    } else if (json_object* error = strict_json::member(value, "error")) {
        json_object_object_del(error, "data");
    }
}

/// The response without its error's particulars.
inline std::string essence(const std::string& response)
{
    const strict_json::JsonValue value = parsed(response);
    drop_error_data(value.get());
    return strict_json::json_text(value.get());
}

MATCHER_P(JsonEq, expected, "is JSON equal to " + testing::PrintToString(expected))
{
    return json_object_equal(parsed(arg).get(), parsed(expected).get()) != 0;
}

} // namespace host_test

#endif
