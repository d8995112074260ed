// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_TEXTS_ADDRESS_LIST_H
#define SERVER_TEXTS_ADDRESS_LIST_H

#include <set>
#include <string_view>

#include "texts/mac_address.h"

namespace varnel {

/// Throws Refusal(malformed_address).
MacAddress parse_address(std::string_view text);

/// Reads addresses with any run of commas, semicolons and blanks between them, and before and after; an
/// address that stands there twice counts once. Throws Refusal for a malformed address, an empty list and one
/// that is too long.
std::set<MacAddress> parse_address_list(std::string_view text);

} // namespace varnel

#endif
