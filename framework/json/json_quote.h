// SPDX-License-Identifier: Apache-2.0
#ifndef STRICT_JSON_JSON_QUOTE_H
#define STRICT_JSON_JSON_QUOTE_H

#include <string>
#include <string_view>

namespace strict_json {

/// Any bytes as a JSON string, with its quotation marks and in one line. What is not UTF-8 becomes U+FFFD.
std::string quoted_json(std::string_view text);

} // namespace strict_json

#endif
