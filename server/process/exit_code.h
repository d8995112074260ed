// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_EXIT_CODE_H
#define SERVER_PROCESS_EXIT_CODE_H

namespace varnel {

/// What the program's exit tells its starter.
enum ExitCode : int {
    exit_done = 0,
    exit_cannot_serve = 1,
    exit_usage = 2,
};

} // namespace varnel

#endif
