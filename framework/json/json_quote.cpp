// SPDX-License-Identifier: Apache-2.0
#include "json/json_quote.h"

#include <optional>

#include "json/utf8.h"

namespace strict_json {
namespace {

void append_escaped(std::string& quoted, std::string_view text)
{
    constexpr const char* digits = "0123456789abcdef";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            (quoted += '\\') += c;
        else if (code < ' ' || code == 0x7f)
            ((quoted += "\\u00") += digits[code >> 4U]) += digits[code & 15U];
        else
            quoted += c;
    }
}

} // namespace

std::string quoted_json(std::string_view text)
{
    std::string quoted = "\"";
    quoted.reserve(text.size() + 2);
    while (const std::optional<std::size_t> invalid = find_invalid_utf8(text)) {
        append_escaped(quoted, text.substr(0, *invalid));
        quoted += "\xef\xbf\xbd";
        text.remove_prefix(*invalid + 1);
    }
    append_escaped(quoted, text);
    return quoted += '"';
}

} // namespace strict_json
