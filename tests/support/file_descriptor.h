// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_FILE_DESCRIPTOR_H
#define TESTS_SUPPORT_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace test_support {

/// Owns an open file descriptor.
class FileDescriptor
{
public:
    explicit FileDescriptor(int number = -1) noexcept : m_number(number) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }

    int get() const noexcept { return m_number; }
    /// The caller closes it from now on.
    int release() noexcept { return std::exchange(m_number, -1); }
    void close() noexcept
    {
        if (m_number >= 0) {
            ::close(std::exchange(m_number, -1));
        }
    }

private:
    int m_number;
};

} // namespace test_support

#endif
