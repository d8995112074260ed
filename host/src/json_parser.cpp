// SPDX-License-Identifier: Apache-2.0
#include "json_parser.h"

#include <json-c/json_tokener.h>

#include <climits>
#include <memory>
#include <new>

namespace zorbd {
namespace {

struct TokenerRelease
{
    void operator()(json_tokener* tokener) const noexcept { json_tokener_free(tokener); }
};

using Tokener = std::unique_ptr<json_tokener, TokenerRelease>;

Tokener make_tokener(int max_depth)
{
    // json-c counts a scalar as a level, so an array of depth n needs n + 1.
    Tokener tokener(json_tokener_new_ex(max_depth + 1));
    if (tokener == nullptr)
        throw std::bad_alloc();
    json_tokener_set_flags(tokener.get(), JSON_TOKENER_STRICT);
    return tokener;
}

} // namespace

JsonValue parse_json(const std::string& text, int max_depth)
{
    if (text.size() >= INT_MAX)
        throw JsonSyntaxError("too long", INT_MAX);
    check_json_tokens(text);
    const Tokener tokener = make_tokener(max_depth);
    // With the terminating NUL the parser knows that a number at the very end is complete.
    const int length = static_cast<int>(text.size()) + 1;
    JsonValue value(json_tokener_parse_ex(tokener.get(), text.c_str(), length));
    const json_tokener_error error = json_tokener_get_error(tokener.get());
    if (error != json_tokener_success)
        throw JsonSyntaxError(json_tokener_error_desc(error), json_tokener_get_parse_end(tokener.get()));
    return value;
}

} // namespace zorbd
