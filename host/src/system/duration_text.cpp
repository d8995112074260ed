// SPDX-License-Identifier: Apache-2.0
#include "system/duration_text.h"

#include <sstream>

namespace zorbd {

std::string seconds_text(std::chrono::milliseconds duration)
{
    std::ostringstream text;
    text << std::chrono::duration<double>(duration).count();
    return text.str();
}

} // namespace zorbd
