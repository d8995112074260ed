// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_FIFO_H
#define TESTS_HOST_FIFO_H

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "system/file_descriptor.h"
#include "temporary_folder.h"

namespace host_test {

/// A FIFO that something waits to read from.
class Fifo
{
public:
    Fifo()
    {
        if (mkfifo(path().c_str(), 0600) != 0)
            throw std::system_error(errno, std::generic_category(), path());
    }

    std::string path() const { return m_folder.path() / "fifo"; }

    /// Lets whoever opens it for reading go on. Does not wait, and holds for whoever comes later too.
    void release() { m_opened.reset(open(path().c_str(), O_RDWR | O_CLOEXEC)); }

    /// Fills it, so that whoever writes to it stands still.
    void fill()
    {
        release();
        const zorbd::FileDescriptor writer(open(path().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        while (write(writer.get(), "filled\n", 7) > 0) {
        }
    }

private:
    test_support::TemporaryFolder m_folder;
    zorbd::FileDescriptor m_opened;
};

} // namespace host_test

#endif
