// SPDX-License-Identifier: Apache-2.0
#include "http/bearer_token.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "system/file_descriptor.h"

namespace zorbd {
namespace {

constexpr std::size_t shortest = 16;
constexpr std::size_t longest = 1024;
constexpr std::string_view scheme = "Bearer ";

bool is_visible(char c)
{
    return c > ' ' && c < '\x7f';
}

bool equal_in_constant_time(std::string_view left, std::string_view right)
{
    if (left.size() != right.size())
        return false;
    volatile unsigned char difference = 0;
    for (std::size_t i = 0; i < left.size(); ++i)
        difference = static_cast<unsigned char>(difference | (left[i] ^ right[i]));
    return difference == 0;
}

bool begins_with_scheme(std::string_view authorization)
{
    return authorization.size() >= scheme.size() &&
           strncasecmp(authorization.data(), scheme.data(), scheme.size()) == 0;
}

[[noreturn]] void fail(const std::string& file)
{
    throw std::system_error(errno, std::generic_category(), "cannot read token file " + file);
}

void check_access(const FileDescriptor& opened, const std::string& file)
{
    struct stat status
    {
    };
    if (fstat(opened.get(), &status) != 0)
        fail(file);
    if ((status.st_mode & S_IRWXO) != 0)
        throw std::runtime_error("token file " + file +
                                 " is open to everyone; take that away with: chmod o= " + file);
}

/// At most one byte more than a token with its line end may have.
std::string read_start(const FileDescriptor& opened, const std::string& file)
{
    std::array<char, longest + 2> buffer{};
    const ssize_t length = read(opened.get(), buffer.data(), buffer.size());
    if (length < 0)
        fail(file);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

} // namespace

BearerToken::BearerToken(std::string secret) : m_secret(std::move(secret))
{
    if (m_secret.size() < shortest || m_secret.size() > longest)
        throw std::invalid_argument("a token must have " + std::to_string(shortest) + " to " +
                                    std::to_string(longest) + " characters");
    if (!std::all_of(m_secret.begin(), m_secret.end(), is_visible))
        throw std::invalid_argument("a token must be one line of visible ASCII characters without blanks");
}

BearerToken BearerToken::from_file(const std::string& file)
{
    const FileDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.get() < 0)
        fail(file);
    check_access(opened, file);
    std::string text = read_start(opened, file);
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    try {
        return BearerToken(std::move(text));
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error("token file " + file + ": " + error.what());
    }
}

bool BearerToken::admits(std::string_view authorization) const
{
    return begins_with_scheme(authorization) &&
           equal_in_constant_time(authorization.substr(scheme.size()), m_secret);
}

} // namespace zorbd
