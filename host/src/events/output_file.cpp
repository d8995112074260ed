// SPDX-License-Identifier: Apache-2.0
#include "events/output_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>
#include <system_error>

namespace zorbd {
namespace {

/// It is not when it only holds the number of a descriptor that was closed.
bool is_open_for_writing(int fd)
{
    return (fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDONLY;
}

/// Another open file for the same pipe or terminal; none where that is not allowed.
int open_again(int fd)
{
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

} // namespace

OutputFile::OutputFile(int fd) : m_fd(fd), m_kind(Kind::never_waits)
{
    struct stat about
    {
    };
    if (fstat(fd, &about) != 0 || S_ISREG(about.st_mode) || !is_open_for_writing(fd))
        return;
    if (S_ISSOCK(about.st_mode)) {
        m_kind = Kind::socket;
        return;
    }
    m_own.reset(open_again(fd));
    if (m_own.get() >= 0)
        m_fd = m_own.get();
    else
        m_kind = Kind::may_wait;
}

std::size_t OutputFile::write_some(const char* text, std::size_t size) const
{
    ssize_t written = 0;
    if (m_kind == Kind::socket)
        written = send(m_fd, text, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    else if (m_kind == Kind::never_waits)
        written = write(m_fd, text, size);
    else if (is_writable(std::chrono::milliseconds(0)))
        written = write(m_fd, text, std::min<std::size_t>(size, PIPE_BUF)); // so much fits then
    if (written >= 0)
        return static_cast<std::size_t>(written);
    if (errno == EAGAIN || errno == EINTR)
        return 0;
    throw std::system_error(errno, std::generic_category());
}

void OutputFile::wait_writable(std::chrono::milliseconds duration) const
{
    is_writable(duration);
}

bool OutputFile::is_writable(std::chrono::milliseconds duration) const
{
    pollfd awaited{m_fd, POLLOUT, 0};
    return poll(&awaited, 1, static_cast<int>(duration.count())) > 0;
}

} // namespace zorbd
