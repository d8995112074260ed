// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_FRAMEWORK_PARSE_JSON_H
#define TESTS_FRAMEWORK_PARSE_JSON_H

#include <json-c/json_object.h>
#include <json-c/json_tokener.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "zeb/api/data/KX_JSON.h"

struct PutJson
{
    void operator()(json_object* object) const { json_object_put(object); }
};
using JsonReference = std::unique_ptr<json_object, PutJson>;

/// The value that holds the only reference to what `text` says.
inline zeb::api::data::KX_JSON parse_json(const std::string& text)
{
    json_tokener_error error = json_tokener_success;
    const JsonReference object(json_tokener_parse_verbose(text.c_str(), &error));
    if (error != json_tokener_success)
        throw std::invalid_argument("not JSON: " + text);
    return zeb::api::data::KX_JSON(object.get());
}

#endif
