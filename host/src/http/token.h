// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TOKEN_H
#define ZORBD_TOKEN_H

#include <array>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorbd {

/// What is kept of a token's secret. Tokens are random and long, so nobody finds one by its hash.
using TokenHash = std::array<unsigned char, 32>;

/// SHA-256.
TokenHash hash_of(std::string_view secret);

/// Takes the same time wherever they differ.
bool equal_in_constant_time(const TokenHash& left, const TokenHash& right);

/// A client that may call: by what it is known, and what it may do.
struct Token
{
    std::string name; ///< empty when the file holds nothing but one secret
    TokenHash hash{};
    /// What it may call; `*` stands for any characters. A name that begins with a slash is a page.
    std::vector<std::string> methods{"*"};
    std::optional<std::time_t> end; ///< it counts before this time

    bool allows(std::string_view method) const;
    bool has_expired(std::time_t now) const { return end && now >= *end; }
};

/// Whether `pattern` stands for `name`.
bool stands_for(std::string_view pattern, std::string_view name);

} // namespace zorbd

#endif
