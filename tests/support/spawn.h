// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_SPAWN_H
#define TESTS_SUPPORT_SPAWN_H

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "file_descriptor.h"

namespace test_support {

/// A process just started, with this side's ends of the pipes on its standard streams.
struct SpawnedProcess
{
    pid_t pid = -1;
    FileDescriptor input;
    FileDescriptor output;
    FileDescriptor error;
};

/// Starts `command` with this process's environment and `environment` on top. It is killed when the calling
/// thread ends. Throws std::system_error when it cannot be started.
SpawnedProcess spawn(const std::vector<std::string>& command,
                     const std::map<std::string, std::string>& environment);

} // namespace test_support

#endif
