// SPDX-License-Identifier: Apache-2.0
#include "system/private_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "system/file_descriptor.h"

namespace zorbd {
namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

void write_all(const FileDescriptor& opened, std::string_view content, const std::string& name)
{
    while (!content.empty()) {
        const ssize_t written = ::write(opened.get(), content.data(), content.size());
        if (written < 0 && errno != EINTR)
            fail("cannot write " + name);
        content.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    if (::fsync(opened.get()) != 0)
        fail("cannot write " + name);
}

mode_t mode_for(const std::string& file)
{
    struct stat status
    {
    };
    return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 07777U : 0600U;
}

} // namespace

std::string read_private_file(const std::string& file, const std::string& what, std::size_t limit)
{
    const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status
    {
    };
    if (opened.get() < 0 || ::fstat(opened.get(), &status) != 0)
        fail("cannot read " + what + ' ' + file);
    if ((status.st_mode & S_IRWXO) != 0)
        throw std::runtime_error(what + ' ' + file +
                                 " is open to everyone; take that away with: chmod o= " + file);
    std::string content;
    std::array<char, 4096> part;
    ssize_t length = 0;
    while ((length = ::read(opened.get(), part.data(), part.size())) > 0 && content.size() <= limit)
        content.append(part.data(), static_cast<std::size_t>(length));
    if (length < 0)
        fail("cannot read " + what + ' ' + file);
    if (content.size() > limit)
        throw std::runtime_error(what + ' ' + file + " is longer than " + std::to_string(limit) + " bytes");
    return content;
}

void replace_private_file(const std::string& file, const std::string& content)
{
    const std::string partial = file + ".new";
    ::unlink(partial.c_str());
    {
        const FileDescriptor opened(
            ::open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (opened.get() < 0)
            fail("cannot write " + partial);
        if (::fchmod(opened.get(), mode_for(file)) != 0)
            fail("cannot write " + partial);
        write_all(opened, content, partial);
    }
    if (std::rename(partial.c_str(), file.c_str()) != 0)
        fail("cannot write " + file);
}

} // namespace zorbd
