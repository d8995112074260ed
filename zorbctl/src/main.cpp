// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <iostream>
#include <variant>

#include "commands.h"
#include "failure.h"

namespace {

using namespace zorbctl;

int run(const Options& options)
{
    Client client(options);
    switch (options.command) {
    case Command::list:
        return list_methods(client, options);
    case Command::describe:
        return describe_method(client, options);
    case Command::call:
        return call_method(client, options);
    case Command::watch:
        return watch_events(client, options);
    case Command::health:
        return tell_health(client, options);
    case Command::complete:
        return complete_words(client, options);
    }
    return exit_usage;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const auto read = zorbctl::read_options(argc, argv);
        if (const int* code = std::get_if<int>(&read))
            return *code;
        return run(std::get<zorbctl::Options>(read));
    } catch (const zorbctl::Failure& failure) {
        std::cerr << "zorbctl: " << failure.what() << '\n';
        return failure.code();
    } catch (const std::exception& error) {
        std::cerr << "zorbctl: " << error.what() << '\n';
        return zorbctl::exit_unreachable;
    }
}
