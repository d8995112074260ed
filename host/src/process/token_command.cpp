// SPDX-License-Identifier: Apache-2.0
#include "process/token_command.h"

#include <openssl/rand.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <ctime>
#include <iostream>
#include <stdexcept>

#include "http/token_file.h"
#include "process/exit_code.h"
#include "system/message_log.h"

namespace zorbd {
namespace {

struct TokenOptions
{
    std::string file = "/etc/zorbd/tokens";
    std::string name;
    std::string methods = "*";
    std::string last_day;
};

std::vector<Token> read_if_there(const std::string& file)
{
    if (::access(file.c_str(), F_OK) != 0)
        return {};
    std::vector<Token> tokens = read_token_file(file);
    if (!tokens.empty() && tokens.front().name.empty())
        throw std::runtime_error("token file " + file +
                                 " holds a single secret without a name; name another file with --file");
    return tokens;
}

auto find(std::vector<Token>& tokens, const std::string& name)
{
    return std::find_if(tokens.begin(), tokens.end(),
                        [&name](const Token& token) { return token.name == name; });
}

std::string new_secret()
{
    constexpr const char* digits = "0123456789abcdef";
    std::array<unsigned char, 32> random{};
    if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1)
        throw std::runtime_error("no random numbers can be had");
    std::string secret;
    for (const unsigned byte : random) {
        secret += digits[byte >> 4U];
        secret += digits[byte & 0xfU];
    }
    return secret;
}

std::string methods_text(const Token& token)
{
    std::string text;
    for (const std::string& pattern : token.methods)
        text += (text.empty() ? "" : ",") + pattern;
    return text;
}

void add(const TokenOptions& options, std::ostream& output)
{
    require_token_name(options.name);
    std::vector<Token> tokens = read_if_there(options.file);
    if (find(tokens, options.name) != tokens.end())
        throw std::runtime_error("there is a token '" + options.name + "' in " + options.file +
                                 " already; remove it first, or take another name");
    const std::string secret = new_secret();
    Token token{options.name, hash_of(secret), parse_patterns(options.methods), std::nullopt};
    if (!options.last_day.empty())
        token.end = parse_last_day(options.last_day);
    if (token.has_expired(std::time(nullptr)))
        throw std::runtime_error("the last day " + options.last_day + " is over already");
    tokens.push_back(std::move(token));
    write_token_file(options.file, tokens);
    log_message("the token '" + options.name + "' is in " + options.file +
                "; its secret is shown this once and is kept nowhere:");
    output << secret << std::endl;
}

void list(const TokenOptions& options, std::ostream& output)
{
    const std::time_t now = std::time(nullptr);
    for (const Token& token : read_token_file(options.file))
        output << (token.name.empty() ? "(single secret)" : token.name) << " methods=" << methods_text(token)
               << (token.end ? " until=" + last_day_text(*token.end) : "")
               << (token.has_expired(now) ? " expired" : "") << '\n';
}

void remove(const TokenOptions& options)
{
    std::vector<Token> tokens = read_if_there(options.file);
    const auto found = find(tokens, options.name);
    if (found == tokens.end())
        throw std::runtime_error("there is no token '" + options.name + "' in " + options.file);
    tokens.erase(found);
    write_token_file(options.file, tokens);
    log_message("the token '" + options.name + "' is removed from " + options.file +
                "; a running zorbd knows it until SIGHUP");
}

CLI::App* add_command(CLI::App& app, TokenOptions& options, const char* name, const char* purpose)
{
    CLI::App* const command = app.add_subcommand(name, purpose);
    command->add_option("--file", options.file, "Token file")->capture_default_str()->type_name("FILE");
    return command;
}

} // namespace

int run_token_command(int argc, const char* const* argv, std::ostream& output)
{
    TokenOptions options;
    CLI::App app(
        "Makes, lists and removes the tokens that clients of zorbd show. The file keeps the hash of a "
        "secret, never\nthe secret. A running zorbd reads it again on SIGHUP.",
        "zorbd token");
    app.require_subcommand(1);
    CLI::App* const adding = add_command(app, options, "add", "Make a token and print its secret, once");
    adding->add_option("NAME", options.name, "What the access log calls it")->required();
    adding
        ->add_option(
            "--methods", options.methods,
            "What it may call: names, * for any characters, with commas between; /events and /metrics "
            "are pages")
        ->capture_default_str()
        ->type_name("PATTERNS");
    adding->add_option("--until", options.last_day, "Its last day, such as 2027-12-31 (UTC)")
        ->type_name("DAY");
    CLI::App* const listing = add_command(app, options, "list", "Tell names, methods and last days");
    CLI::App* const removing = add_command(app, options, "remove", "Remove a token");
    removing->add_option("NAME", options.name, "The token")->required();
    try {
        app.parse(argc, argv);
        if (adding->parsed())
            add(options, output);
        else if (listing->parsed())
            list(options, output);
        else if (removing->parsed())
            remove(options);
        return exit_stopped;
    } catch (const CLI::ParseError& end) {
        return app.exit(end, output, std::cerr) == 0 ? exit_stopped : exit_usage;
    } catch (const std::invalid_argument& error) {
        log_message(error.what());
        return exit_usage;
    } catch (const std::exception& error) {
        log_message(error.what());
        return exit_start_failed;
    }
}

} // namespace zorbd
