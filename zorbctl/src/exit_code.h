// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_EXIT_CODE_H
#define ZORBCTL_EXIT_CODE_H

namespace zorbctl {

/// What scripts can tell by.
enum ExitCode : int {
    exit_done = 0,
    exit_refused = 1, ///< the host answered with an error, or the reply tells of a failure
    exit_usage = 2,
    exit_unreachable = 3, ///< the host cannot be reached, or does not let the request in
    exit_no_reply = 4,    ///< the reply line did not come in time
    exit_unhealthy = 5,   ///< a plug-in waits for its service, or calls of it take too long
};

} // namespace zorbctl

#endif
