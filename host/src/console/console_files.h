// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CONSOLE_FILES_H
#define ZORBD_CONSOLE_FILES_H

#include <array>
#include <string_view>

namespace zorbd {

/// A file of the console, as it stands in the program.
struct ConsoleFile
{
    std::string_view path; ///< where it is served
    const char* content_type;
    std::string_view text;
};

/// All of them.
const std::array<ConsoleFile, 3>& console_files();

} // namespace zorbd

#endif
