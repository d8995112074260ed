// SPDX-License-Identifier: Apache-2.0
// A process that is no peer of the RMI layer, or a dishonest one, in the domain of a server and its clients.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <memory>
#include <random>
#include <string>

#include "intruder_client.h"
#include "intruder_noise.h"
#include "intruder_server.h"

namespace {

void wait_for_end_of_input()
{
    std::string line;
    while (std::getline(std::cin, line)) {
    }
}

/// Stays until standard input ends, once it has done what it is there for.
template <class Deed>
int run(Deed deed)
{
    try {
        [[maybe_unused]] const auto kept = deed();
        std::cout << "done" << std::endl;
        wait_for_end_of_input();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "drill_intruder: " << error.what() << std::endl;
        return 1;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    unsigned count = 100;
    unsigned seed = std::random_device{}();
    CLI::App app{
        "Does what no honest peer would, on the topics of the interface that the tests of the RMI layer "
        "serve. Prints 'done' and stays until its standard input ends."};
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--count", count, "How many messages, of each kind")->capture_default_str();
    app.add_option("--seed", seed, "Of the random numbers; a new one each time unless given");
    const auto* const noise =
        app.add_subcommand("noise", "Publish what is no message, or one that fits nobody");
    const auto* const announce = app.add_subcommand("announce", "Announce servers that do not exist");
    const auto* const break_sessions =
        app.add_subcommand("break", "Begin sessions, and break each in another way");
    const auto* const steal = app.add_subcommand("steal", "Call in sessions that are not one's own");
    const auto* const greet = app.add_subcommand("greet", "Say hello, again and again");
    const auto* const busy = app.add_subcommand("busy", "Serve, but never have room for a request");
    app.add_subcommand("restless", "Serve, but begin another session whenever it is called");
    CLI11_PARSE(app, argc, argv);

    using intruder::UnreliableServer;
    if (noise->parsed()) {
        std::cout << "seed " << seed << std::endl;
        return run([&] { return intruder::make_noise(count, seed), 0; });
    }
    if (announce->parsed())
        return run([] { return std::make_unique<intruder::FalseAnnouncements>(); });
    if (break_sessions->parsed())
        return run([] {
            const unsigned runs = intruder::break_sessions();
            std::cout << "runs=" << runs << std::endl;
            return runs;
        });
    if (steal->parsed())
        return run([&] { return intruder::use_false_sessions(count), 0; });
    if (greet->parsed())
        return run([&] { return intruder::flood_with_greetings(count), 0; });
    const auto manner = busy->parsed() ? UnreliableServer::Manner::busy : UnreliableServer::Manner::restless;
    return run([manner] { return std::make_unique<UnreliableServer>(manner); });
}
