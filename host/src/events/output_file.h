// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_OUTPUT_FILE_H
#define ZORBD_OUTPUT_FILE_H

#include <chrono>
#include <cstddef>

#include "system/file_descriptor.h"

namespace zorbd {

/// A descriptor that is written to without waiting for its reader, whatever it is: a file, a pipe, a socket,
/// a terminal. The mode of what the process shares with others through the descriptor is not changed.
class OutputFile
{
public:
    /// `fd` must stay open for as long as the object lives.
    explicit OutputFile(int fd);

    /// Writes what can be written now and gives the number of bytes; 0 when that is nothing. Throws
    /// std::system_error.
    std::size_t write_some(const char* text, std::size_t size) const;

    /// Waits until something can be written, or has gone wrong, at most for `duration`.
    void wait_writable(std::chrono::milliseconds duration) const;

private:
    enum class Kind { never_waits, socket, may_wait };

    bool is_writable(std::chrono::milliseconds duration) const;

    int m_fd;
    Kind m_kind;
    FileDescriptor m_own; ///< a second way to the same pipe or terminal, which does not wait
};

} // namespace zorbd

#endif
