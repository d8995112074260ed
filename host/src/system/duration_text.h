// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_DURATION_TEXT_H
#define ZORBD_DURATION_TEXT_H

#include <chrono>
#include <string>

namespace zorbd {

/// Seconds in decimal, with a fraction only where there is one.
std::string seconds_text(std::chrono::milliseconds duration);

} // namespace zorbd

#endif
