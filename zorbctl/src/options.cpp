// SPDX-License-Identifier: Apache-2.0
#include "options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "exit_code.h"
#include "version.h"

namespace zorbctl {
namespace {

constexpr const char* purpose = "Lists, describes and calls the methods of a zorbd, and shows its events.";

constexpr const char* footer =
    "The token comes from the file of --token-file or from the environment variable ZORBCTL_TOKEN, never "
    "from the\n"
    "command line, which every user can read. ZORBCTL_URL and ZORBCTL_SOCKET stand in for --url and "
    "--unix-socket.\n"
    "Exit codes: 0 done, 1 the host answered with an error or the reply tells of a failure, 2 wrong option,\n"
    "3 the host cannot be reached or does not let the request in, 4 the reply line did not come in time,\n"
    "5 a plug-in waits for its service, or calls of it take too long (health).";

/// CLI11's own check lets nan pass, which is neither below nor above.
std::string check_timeout(const std::string& text)
{
    double seconds = 0;
    const bool is_number = CLI::detail::lexical_cast(text, seconds);
    return is_number && seconds >= 0.1 && seconds <= 86400
               ? ""
               : "'" + text + "' is no number of seconds in the range 0.1..86400";
}

void add_connection(CLI::App& app, Options& options)
{
    app.add_option("--url", options.url, "Where zorbd is")
        ->type_name("URL")
        ->envname("ZORBCTL_URL")
        ->capture_default_str();
    app.add_option("--unix-socket", options.unix_socket, "Its Unix socket, instead of the URL's address")
        ->type_name("PATH")
        ->envname("ZORBCTL_SOCKET");
    app.add_option("--token-file", options.token_file, "File with the bearer token")->type_name("FILE");
    app.add_option("--ca-file", options.ca_file, "Certificates that an https URL's server is checked by")
        ->type_name("FILE");
    app.add_option("--timeout", options.timeout, "Seconds to wait for an answer, and for a reply line")
        ->type_name("SECONDS")
        ->check(CLI::Validator(check_timeout, "0.1..86400"))
        ->capture_default_str();
    app.add_option_function<std::string>(
           "--output", [&options](const std::string& form) { options.json = form == "json"; },
           "Form of the output: for people, or for programs")
        ->type_name("plain|json")
        ->default_str("plain")
        ->check(CLI::IsMember({"plain", "json"}));
}

CLI::App* add_command(CLI::App& app, Options& options, Command command, const char* name, const char* help)
{
    return app.add_subcommand(name, help)->callback([&options, command] { options.command = command; });
}

void add_commands(CLI::App& app, Options& options)
{
    add_command(app, options, Command::list, "list", "List the methods");
    add_command(app, options, Command::describe, "describe", "Tell what a method does and takes")
        ->add_option("METHOD", options.method, "Its name")
        ->required();
    auto* call = add_command(app, options, Command::call, "call", "Call a method");
    call->add_option("METHOD", options.method, "Its name")->required();
    auto* params =
        call->add_option("KEY=VALUE", options.params, "Parameters, typed as the method's description says");
    call->add_option("--json", options.given, "The whole params object, instead of KEY=VALUE")
        ->type_name("JSON")
        ->excludes(params);
    call->add_flag("--wait", options.wait, "Wait for the line with which the plug-in tells of the reply");
    auto* watch = add_command(app, options, Command::watch, "watch", "Show lines and calls as they come");
    watch->add_option("--filter", options.filter, "Only what has this text in it")->type_name("TEXT");
    watch->add_option("--after", options.after, "Begin with what followed this event; 0 for all that is kept")
        ->type_name("ID");
    watch->add_option("--count", options.count, "End after so many")
        ->type_name("NUMBER")
        ->check(CLI::Range(1.0, 1e9));
    add_command(app, options, Command::health, "health", "Tell which plug-ins are bound");
    auto* complete = add_command(app, options, Command::complete, "complete", "");
    complete->group("")->add_option("WORDS", options.words);
    complete->prefix_command();
    app.require_subcommand(1);
    app.fallthrough();
}

} // namespace

std::variant<Options, int> read_options(int argc, const char* const* argv)
{
    Options options;
    CLI::App app(purpose, "zorbctl");
    app.footer(footer);
    app.set_version_flag("--version", std::string("zorbctl ") + version);
    add_connection(app, options);
    add_commands(app, options);
    try {
        app.parse(argc, argv);
        return options;
    } catch (const CLI::ParseError& end) {
        if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            app.exit(end);
            return static_cast<int>(exit_done);
        }
        std::cerr << "zorbctl: " << end.what() << " (zorbctl --help tells the options)\n";
        return static_cast<int>(exit_usage);
    }
}

} // namespace zorbctl
