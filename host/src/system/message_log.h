// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_MESSAGE_LOG_H
#define ZORBD_MESSAGE_LOG_H

#include <string>

namespace zorbd {

/// Writes one line, "zorbd: " and the text, to std::cerr in one piece. Any thread may call it.
void log_message(const std::string& text) noexcept;

} // namespace zorbd

#endif
