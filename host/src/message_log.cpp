// SPDX-License-Identifier: Apache-2.0
#include "message_log.h"

#include <unistd.h>

namespace zorbd {

void log_message(const std::string& text) noexcept
{
    try {
        const std::string line = "zorbd: " + text + '\n';
        // Where standard error cannot take it there is no one left to tell.
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
    } catch (...) { // NOLINT(bugprone-empty-catch): a lost line must not end the thread that wrote it
    }
}

} // namespace zorbd
