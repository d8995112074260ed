// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_PRIVATE_BUS_H
#define BENCH_PRIVATE_BUS_H

#include <string>

#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace bench {

/// A D-Bus daemon that nobody else uses, on a Unix socket in a folder of its own.
class PrivateBus
{
public:
    /// Returns when it takes connections. Throws std::runtime_error when it does not.
    PrivateBus();

    std::string address() const { return "unix:path=" + (m_folder.path() / "bus").string(); }

private:
    std::string configuration() const;

    test_support::TemporaryFolder m_folder;
    test_support::ChildProcess m_daemon;
};

} // namespace bench

#endif
