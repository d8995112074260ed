// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_OPTIONS_H
#define ZORBCTL_OPTIONS_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zorbctl {

enum class Command { list, describe, call, watch, health, complete };

/// What is asked of the command.
struct Options
{
    Command command = Command::list;
    std::string url = "http://127.0.0.1:8080/";
    std::optional<std::string> unix_socket;
    std::optional<std::string> token_file;
    std::optional<std::string> ca_file;
    double timeout = 30; ///< seconds
    bool json = false;   ///< output for programs

    std::string method;
    std::vector<std::string> params;  ///< key=value
    std::optional<std::string> given; ///< the whole params object, as JSON
    bool wait = false;
    std::string filter;
    std::optional<std::string> after; ///< the id of an event
    std::optional<std::size_t> count; ///< of events, after which watching ends
    std::vector<std::string> words;   ///< of a command line to complete
};

/// Reads the command line; gives the exit code instead when there is nothing more to do.
std::variant<Options, int> read_options(int argc, const char* const* argv);

} // namespace zorbctl

#endif
