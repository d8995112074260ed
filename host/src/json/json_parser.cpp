// SPDX-License-Identifier: Apache-2.0
#include "json/json_parser.h"

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

/// Above this a text gets a parser of its own, because a parser keeps as much memory as its longest string
/// took.
constexpr std::size_t longest_for_kept_parser = 16384;

Tokener make_tokener(int max_depth)
{
    // json-c counts a scalar as a level, so an array of depth n needs n + 1.
    Tokener tokener(json_tokener_new_ex(max_depth + 1));
    if (tokener == nullptr)
        throw std::bad_alloc();
    json_tokener_set_flags(tokener.get(), JSON_TOKENER_STRICT);
    return tokener;
}

/// The thread's own, kept from text to text: to make one takes longer than to parse a usual request.
json_tokener& kept_tokener(int max_depth)
{
    thread_local Tokener tokener;
    thread_local int depth = 0;
    if (tokener == nullptr || depth != max_depth) {
        tokener = make_tokener(max_depth);
        depth = max_depth;
    }
    json_tokener_reset(tokener.get()); // the text before may have ended in a mistake
    return *tokener;
}

JsonValue parse(json_tokener& tokener, const std::string& text)
{
    // With the terminating NUL the parser knows that a number at the very end is complete.
    const int length = static_cast<int>(text.size()) + 1;
    JsonValue value(json_tokener_parse_ex(&tokener, text.c_str(), length));
    const json_tokener_error error = json_tokener_get_error(&tokener);
    if (error != json_tokener_success)
        throw JsonSyntaxError(json_tokener_error_desc(error), json_tokener_get_parse_end(&tokener));
    return value;
}

} // namespace

JsonValue parse_json(const std::string& text, int max_depth)
{
    if (text.size() >= INT_MAX)
        throw JsonSyntaxError("too long", INT_MAX);
    check_json_tokens(text);
    if (text.size() <= longest_for_kept_parser)
        return parse(kept_tokener(max_depth), text);
    return parse(*make_tokener(max_depth), text);
}

} // namespace zorbd
