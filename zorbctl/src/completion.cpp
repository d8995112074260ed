// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <iostream>
#include <iterator>

#include "commands.h"
#include "description.h"
#include "exit_code.h"

namespace zorbctl {
namespace {

constexpr std::array commands = {"list", "describe", "call", "watch", "health"};

void print_keys(const Json& method)
{
    for (const Json& param : method.value("params", Json::array()))
        std::cout << param.value("name", "") << "=\n";
}

} // namespace

/// The words are those after "zorbctl", without the one that is being written.
int complete_words(Client& client, const Options& options)
{
    const auto command =
        std::find_first_of(options.words.begin(), options.words.end(), commands.begin(), commands.end());
    if (command == options.words.end()) {
        for (const char* name : commands)
            std::cout << name << '\n';
        return exit_done;
    }
    if (*command != "call" && *command != "describe")
        return exit_done;
    const Json document = client.result_of("rpc.discover");
    const auto method = std::next(command);
    if (method != options.words.end()) {
        if (*command == "call")
            print_keys(find_method(document, *method));
        return exit_done;
    }
    for (const Json& one : document.value("methods", Json::array()))
        std::cout << one.value("name", "") << '\n';
    return exit_done;
}

} // namespace zorbctl
