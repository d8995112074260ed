// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TOKEN_STORE_H
#define ZORBD_TOKEN_STORE_H

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "http/token.h"

namespace zorbd {

/// The tokens that clients may show, from a file that can be read again. Any thread may use it.
class TokenStore
{
public:
    /// Throws what read_token_file() throws.
    explicit TokenStore(std::string file);

    /// Reads the file again. Throws what read_token_file() throws, and keeps what it has then.
    void reload();

    /// The token whose secret stands in the value of an Authorization header, "Bearer <secret>"; null when it
    /// is none. It may have expired. The time that it takes tells nothing of any secret.
    std::shared_ptr<const Token> find(std::string_view authorization) const;

private:
    using Tokens = std::vector<std::shared_ptr<const Token>>;

    std::shared_ptr<const Tokens> tokens() const;

    const std::string m_file;
    mutable std::mutex m_mutex;
    std::shared_ptr<const Tokens> m_tokens; // guarded by m_mutex
};

} // namespace zorbd

#endif
