// SPDX-License-Identifier: Apache-2.0
#include "http/token_store.h"

#include <strings.h>

#include <utility>

#include "http/token_file.h"

namespace zorbd {
namespace {

constexpr std::string_view scheme = "Bearer ";

bool begins_with_scheme(std::string_view authorization)
{
    return authorization.size() >= scheme.size() &&
           strncasecmp(authorization.data(), scheme.data(), scheme.size()) == 0;
}

} // namespace

TokenStore::TokenStore(std::string file) : m_file(std::move(file))
{
    reload();
}

void TokenStore::reload()
{
    auto tokens = std::make_shared<Tokens>();
    for (Token& token : read_token_file(m_file))
        tokens->push_back(std::make_shared<const Token>(std::move(token)));
    const std::lock_guard lock(m_mutex);
    m_tokens = std::move(tokens);
}

std::shared_ptr<const Token> TokenStore::find(std::string_view authorization) const
{
    if (!begins_with_scheme(authorization))
        return nullptr;
    const TokenHash shown = hash_of(authorization.substr(scheme.size()));
    std::shared_ptr<const Token> found;
    for (const auto& token : *tokens())
        if (equal_in_constant_time(token->hash, shown))
            found = token;
    return found;
}

std::shared_ptr<const TokenStore::Tokens> TokenStore::tokens() const
{
    const std::lock_guard lock(m_mutex);
    return m_tokens;
}

} // namespace zorbd
