// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_EXIT_CODE_H
#define ZORBD_EXIT_CODE_H

namespace zorbd {

/// How the process ends; the manual page tells the same.
enum ExitCode : int {
    exit_stopped = 0,      ///< it was asked to stop and did so in order
    exit_start_failed = 1, ///< a plug-in, a socket, a file or a thread could not be had
    exit_usage = 2,        ///< an option or the configuration file is wrong
    exit_not_in_order = 3, ///< it stopped while a call or a factory was still running
};

} // namespace zorbd

#endif
