// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_BEARER_TOKEN_H
#define ZORBD_BEARER_TOKEN_H

#include <string>
#include <string_view>

namespace zorbd {

/// The secret that a client must show.
class BearerToken
{
public:
    /// Throws std::invalid_argument when it is too short to be a secret, too long, or has characters that
    /// cannot stand in an Authorization header.
    explicit BearerToken(std::string secret);

    /// Reads the one line of a file that others must not be able to read. Throws std::runtime_error that
    /// names the file and the cause.
    static BearerToken from_file(const std::string& file);

    /// Whether the value of an Authorization header is "Bearer " and the secret. The time it takes tells
    /// nothing of the secret but its length.
    bool admits(std::string_view authorization) const;

private:
    std::string m_secret;
};

} // namespace zorbd

#endif
