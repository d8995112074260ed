// SPDX-License-Identifier: Apache-2.0
#include "http/token.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <stdexcept>

namespace zorbd {

TokenHash hash_of(std::string_view secret)
{
    TokenHash hash{};
    if (EVP_Digest(secret.data(), secret.size(), hash.data(), nullptr, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 cannot be computed");
    return hash;
}

bool equal_in_constant_time(const TokenHash& left, const TokenHash& right)
{
    return CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

bool Token::allows(std::string_view method) const
{
    return std::any_of(methods.begin(), methods.end(),
                       [method](const std::string& pattern) { return stands_for(pattern, method); });
}

bool stands_for(std::string_view pattern, std::string_view name)
{
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos)
        return pattern == name;
    if (name.substr(0, star) != pattern.substr(0, star))
        return false;
    const std::string_view rest = pattern.substr(star + 1);
    for (std::size_t begin = star; begin <= name.size(); ++begin)
        if (stands_for(rest, name.substr(begin)))
            return true;
    return false;
}

} // namespace zorbd
