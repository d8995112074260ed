// SPDX-License-Identifier: Apache-2.0
#ifndef STRICT_JSON_UTF8_H
#define STRICT_JSON_UTF8_H

#include <cstddef>
#include <optional>
#include <string_view>

namespace strict_json {

/// Where `text` first stops being well-formed UTF-8 (overlong forms, surrogates and values above U+10FFFF are
/// not well-formed); nothing when it is well-formed.
std::optional<std::size_t> find_invalid_utf8(std::string_view text);

} // namespace strict_json

#endif
