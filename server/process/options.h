// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_OPTIONS_H
#define SERVER_PROCESS_OPTIONS_H

#include <chrono>
#include <map>
#include <string>
#include <variant>

#include "texts/mac_address.h"

namespace varnel {

/// What the command line asks for.
struct Options
{
    int instance = 1;
    std::string service = "VarnelDE_Server";
    /// The network is commissioned from the start, with these nodes and their types.
    bool is_commissioned = false;
    std::map<MacAddress, int> nodes = {};
    std::chrono::milliseconds delay{0};
    int threads = 1;
};

/// Reads the command line. For --help, --version and a mistake it writes what there is to say on standard
/// output or standard error and gives the program's exit code.
std::variant<Options, int> parse_options(int argc, const char* const* argv);

} // namespace varnel

#endif
