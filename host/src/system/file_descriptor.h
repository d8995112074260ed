// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_FILE_DESCRIPTOR_H
#define ZORBD_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace zorbd {

/// Owns a file descriptor; -1 is none.
class FileDescriptor
{
public:
    explicit FileDescriptor(int fd = -1) noexcept : m_fd(fd) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        reset(std::exchange(other.m_fd, -1));
        return *this;
    }

    int get() const noexcept { return m_fd; }
    void reset(int fd = -1) noexcept
    {
        const int old = std::exchange(m_fd, fd);
        if (old >= 0)
            close(old);
    }

private:
    int m_fd;
};

} // namespace zorbd

#endif
