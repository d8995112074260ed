// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_JSON_TEXT_CHECK_H
#define ZORBD_JSON_TEXT_CHECK_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace zorbd {

/// A text that is not JSON, or that this host does not take; what() names the cause and the byte.
class JsonSyntaxError : public std::runtime_error
{
public:
    JsonSyntaxError(const std::string& cause, std::size_t offset);
};

/// Refuses what json-c would let pass or would change silently, although it is no JSON or is not kept
/// exactly: numbers such as -01, 1. and NaN, integers beyond 64 bits, unescaped control characters, bytes
/// that are not UTF-8, a NUL byte, and member names with an escaped NUL (json-c cuts them short).
///
/// It looks at tokens only; their order is left to the parser. Throws JsonSyntaxError.
void check_json_tokens(std::string_view text);

} // namespace zorbd

#endif
