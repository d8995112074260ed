// SPDX-License-Identifier: Apache-2.0
#include "console/console_files.h"

#include "console_texts.h" // made from the files beside this one

namespace zorbd {

const std::array<ConsoleFile, 3>& console_files()
{
    static constexpr std::array<ConsoleFile, 3> files = {{
        {"/", "text/html; charset=utf-8", console_texts::page},
        {"/console.css", "text/css; charset=utf-8", console_texts::style},
        {"/console.js", "text/javascript; charset=utf-8", console_texts::script},
    }};
    return files;
}

} // namespace zorbd
