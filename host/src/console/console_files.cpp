// SPDX-License-Identifier: Apache-2.0
#include "console/console_files.h"

#include <algorithm>
#include <iterator>

#include "console_texts.h" // made from the files beside this one

namespace zorbd {
namespace {

constexpr ConsoleFile files[] = {
    {"/", "text/html; charset=utf-8", console_texts::page},
    {"/console.css", "text/css; charset=utf-8", console_texts::style},
    {"/console.js", "text/javascript; charset=utf-8", console_texts::script},
};

} // namespace

const ConsoleFile* find_console_file(std::string_view path)
{
    const auto* found = std::find_if(std::begin(files), std::end(files),
                                     [path](const ConsoleFile& file) { return file.path == path; });
    return found == std::end(files) ? nullptr : found;
}

} // namespace zorbd
