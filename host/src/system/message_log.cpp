// SPDX-License-Identifier: Apache-2.0
#include "system/message_log.h"

#include <algorithm>
#include <iostream>

namespace zorbd {

namespace {

bool is_control(char c)
{
    return static_cast<unsigned char>(c) < ' ';
}

} // namespace

void log_message(const std::string& text) noexcept
{
    try {
        std::string line = "zorbd: " + text;
        std::replace_if(line.begin(), line.end(), is_control, ' '); // what a plug-in throws stays on its line
        line += '\n';
        std::cerr << line;
    } catch (...) { // NOLINT(bugprone-empty-catch): a lost line must not end the thread that wrote it
    }
}

} // namespace zorbd
