// SPDX-License-Identifier: Apache-2.0
#include "process/options.h"

#include <grp.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "process/exit_code.h"
#include "process/service_manager.h"
#include "system/duration_text.h"
#include "system/message_log.h"
#include "system/version.h"

namespace zorbd {
namespace {

constexpr std::uint16_t default_port = 8080;

constexpr const char* purpose = "Loads plug-ins and serves their methods as JSON-RPC 2.0 over HTTP.\n"
                                "Calls are POSTed to /, GET /healthz tells which plug-ins are bound, and the "
                                "method rpc.discover answers an\n"
                                "OpenRPC document of all methods.";

constexpr const char* footer = "Exit codes: 0 stopped in order (SIGTERM, SIGINT), 1 could not start, "
                               "2 wrong option or configuration,\n"
                               "3 stopped while a call was still running. SIGHUP reads certificates, tokens "
                               "and the configuration again. A second "
                               "signal ends the process at once.";

/// Turns what a reader of texts throws into a mistake of that option.
template <class Read>
auto option_with(const char* name, Read read)
{
    return [name, read](const std::string& text) {
        try {
            read(text);
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError(name, error.what());
        }
    };
}

mode_t parse_mode(const std::string& text)
{
    mode_t mode = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), mode, 8);
    if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size() || mode > 0777)
        throw std::invalid_argument("'" + text + "' is no octal file mode such as 0660");
    return mode;
}

gid_t parse_group(const std::string& name)
{
    if (const group* found = getgrnam(name.c_str()))
        return found->gr_gid;
    throw std::invalid_argument("there is no group '" + name + "'");
}

/// CLI11's own check lets nan pass, which is neither below nor above.
template <class Number>
CLI::Validator between(Number low, Number high)
{
    std::ostringstream range;
    range << low << ".." << high;
    const auto check = [low, high, text = range.str()](const std::string& input) {
        Number value{};
        const bool is_number = CLI::detail::lexical_cast(input, value);
        const bool is_within = is_number && value >= low && value <= high;
        return is_within ? std::string() : "'" + input + "' is no number in the range " + text;
    };
    return CLI::Validator(check, range.str());
}

template <class Number>
void add_number(CLI::App& app, const char* name, Number& target, Number low, Number high, const char* help)
{
    app.add_option(name, target, help)->type_name("NUMBER")->check(between(low, high))->capture_default_str();
}

/// An option in seconds, which may have a fraction.
void add_seconds(CLI::App& app, const char* name, std::chrono::milliseconds& target, double low, double high,
                 const char* help)
{
    const auto set = [&target](double seconds) {
        target =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
    };
    app.add_option_function<double>(name, set, help)
        ->type_name("SECONDS")
        ->check(between(low, high))
        ->default_str(seconds_text(target));
}

CLI::Validator is_a_path()
{
    const auto check = [](const std::string& text) {
        return text.empty() ? std::string("the path is empty") : std::string();
    };
    return CLI::Validator(check, "");
}

void add_listeners(CLI::App& app, Options& options)
{
    app.add_option_function<std::string>(
           "--listen",
           option_with("--listen",
                       [&options](const std::string& text) { options.tcp = parse_tcp_address(text); }),
           "TCP address to serve on; port 0 takes a free one. An address other than loopback needs TLS, and "
           "--token-file or --tls-client-ca. 127.0.0.1:8080 when neither this nor --unix-socket is given")
        ->type_name("ADDRESS:PORT");
    app.add_option("--unix-socket", options.unix_socket, "Path of a Unix socket to serve on")
        ->type_name("PATH")
        ->check(is_a_path());
    app.add_option(
           "--server-name", options.server_names,
           "Name under which clients reach the TCP address, besides localhost and the address itself; may "
           "be given several times. Requests to other names are refused")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option_function<std::string>(
           "--unix-mode",
           option_with("--unix-mode",
                       [&options](const std::string& text) { options.unix_access.mode = parse_mode(text); }),
           "File mode of the Unix socket: who may write to it may call")
        ->type_name("OCTAL")
        ->default_str("0660");
    app.add_option_function<std::string>("--unix-group",
                                         option_with("--unix-group",
                                                     [&options](const std::string& text) {
                                                         options.unix_access.group = parse_group(text);
                                                     }),
                                         "Group of the Unix socket")
        ->type_name("NAME");
    app.add_option(
           "--token-file", options.token_file,
           "File with the bearer tokens of which every request over TCP must show one; not readable by "
           "others (see: zorbd token --help)")
        ->type_name("FILE");
}

void add_tls(CLI::App& app, Options& options)
{
    const auto file = [&app, &options](const char* name, std::string TlsFiles::*member, const char* help) {
        const auto set = [&options, member](const std::string& path) {
            if (!options.tls)
                options.tls.emplace();
            (*options.tls).*member = path;
        };
        app.add_option_function<std::string>(name, set, help)->type_name("FILE");
    };
    file("--tls-certificate", &TlsFiles::certificate,
         "Serve HTTPS over TCP, with this certificate and those that lead to its authority (PEM); read again "
         "on "
         "SIGHUP");
    file("--tls-key", &TlsFiles::key, "Its key (PEM, without a password); not readable by others");
    file("--tls-client-ca", &TlsFiles::client_ca,
         "Authorities of clients (PEM): every client must then show a certificate of one of them");
    app.add_flag("--allow-plain-http", options.allow_plain_http,
                 "Serve beyond loopback without TLS: for a network on which nobody else can read along");
}

void add_limits(CLI::App& app, Options& options)
{
    using Size = std::size_t;
    add_number<Size>(app, "--threads", options.threads, 1, 256,
                     "Threads for calls that take long; quick ones run where they are read");
    add_number<Size>(app, "--max-outstanding", options.max_outstanding, 1, 100000,
                     "Requests that wait or run; a further one is told that the server is busy");
    add_number<Size>(app, "--max-body", options.max_body, 64, 1U << 30U, "Bytes in the body of a request");
    add_number(app, "--max-depth", options.dispatch.max_depth, 2, 1000,
               "Nesting of arrays and objects in a request");
    add_number(app, "--max-batch", options.dispatch.max_batch, 1, 100000, "Requests in a batch");
    add_number<Size>(app, "--max-connections", options.connections.total, 1, 65536,
                     "Client connections over TCP in all");
    add_number<Size>(app, "--max-unix-connections", options.connections.unix_total, 1, 65536,
                     "Client connections over the Unix socket; they take none of the others' places");
    add_number<Size>(app, "--max-connections-per-address", options.connections.per_address, 1, 65536,
                     "Client connections from one IPv4 address or IPv6 network (/64)");
    add_seconds(app, "--token-timeout", options.connections.token, 0.1, 3600,
                "How long a connection may stay without a valid token, where one is asked for");
    add_seconds(
        app, "--call-timeout", options.connections.call, 0, 86400,
        "How long a request may run before it is answered with an error, while the call is left to end; 0 "
        "for ever");
    add_seconds(app, "--idle-timeout", options.connections.idle, 0.1, 86400,
                "How long a connection may stay without a request");
    add_seconds(app, "--request-timeout", options.connections.request, 0.1, 3600,
                "How long a request may take to come in whole, and its response to be taken");
}

void add_events(CLI::App& app, Options& options)
{
    using Size = std::size_t;
    add_number<Size>(app, "--event-memory", options.events.memory, 65536, 1U << 30U,
                     "Bytes of events that are kept for listeners that fall behind or come again");
    add_number<Size>(app, "--max-listeners", options.events.listeners, 0, 65536,
                     "Clients that take events from /events");
    add_seconds(app, "--heartbeat", options.events.heartbeat, 0.1, 3600,
                "Pause after which a listener is sent an empty comment");
    app.add_option("--access-log", options.access_log,
                   "File to which one JSON line is appended for each call; - for standard output")
        ->type_name("FILE");
    app.add_flag("--console,!--no-console", options.console, "Whether GET / answers a page for people")
        ->default_str("true");
}

void add_plugins(CLI::App& app, Options& options)
{
    app.add_option("--plugin", options.plugins, "Plug-in to load; may be given several times")
        ->type_name("FILE")
        ->required()
        ->allow_extra_args(false);
    app.add_option("--check-params", options.check_params,
                   "Whether params are checked against the description that stands beside a plug-in")
        ->type_name("on|off")
        ->default_str("on")
        ->transform(CLI::CheckedTransformer(std::map<std::string, bool>{{"on", true}, {"off", false}}));
    add_number(app, "--discovery-timeout", options.discovery_timeout, -1, 3600,
               "Seconds for which a plug-in looks for its remote service before it counts as not bound; -1 "
               "for ever");
    add_seconds(app, "--retry-pause", options.binding_pauses.first, 0.01, 3600,
                "Pause before an unbound plug-in is tried again; doubles each time");
    add_seconds(app, "--retry-pause-max", options.binding_pauses.longest, 0.01, 3600, "Longest such pause");
    add_seconds(app, "--stop-timeout", options.stop_timeout, 0, 3600,
                "How long a stop waits for running calls and factories");
}

void check_tls(const Options& options)
{
    if (!options.tls)
        return;
    if (options.tls->certificate.empty())
        throw CLI::ValidationError("--tls-certificate", "is needed with the other --tls- options");
    if (options.tls->key.empty())
        throw CLI::ValidationError("--tls-key", "is needed with the other --tls- options");
    if (!options.tcp && !has_inherited_sockets())
        throw CLI::ValidationError("--tls-certificate", "is for --listen; a Unix socket has no TLS");
}

void check_together(Options& options)
{
    if (!options.tcp && !options.unix_socket && !has_inherited_sockets())
        options.tcp = TcpAddress{"127.0.0.1", default_port};
    check_tls(options);
    if (options.tcp && !is_loopback(*options.tcp))
        check_reachable(options, to_text(*options.tcp));
    options.connections.listening = options.events.heartbeat + options.connections.request;
    if (options.binding_pauses.longest < options.binding_pauses.first)
        throw CLI::ValidationError("--retry-pause-max", "must not be shorter than --retry-pause");
}

/// Every option with its value, as text.
std::map<std::string, std::string> settings_of(const CLI::App& app)
{
    std::map<std::string, std::string> settings;
    for (const CLI::Option* option : app.get_options())
        settings[option->get_name()] = CLI::detail::join(option->results(), " ");
    return settings;
}

int end_early(const CLI::App& app, const CLI::ParseError& end, std::ostream& output)
{
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        app.exit(end, output, output);
        return exit_stopped;
    }
    log_message(std::string(end.what()) + " (zorbd --help tells the options)");
    return exit_usage;
}

} // namespace

void check_reachable(const Options& options, const std::string& address)
{
    if (!options.tls && !options.allow_plain_http)
        throw CLI::ValidationError(
            "--listen", address + " can be reached from other machines, and without TLS everyone "
                                  "on the way can read along; give --tls-certificate and --tls-key, "
                                  "a loopback address, or --allow-plain-http if that is meant");
    const bool knows_clients = options.token_file || (options.tls && !options.tls->client_ca.empty());
    if (!knows_clients)
        throw CLI::ValidationError("--listen",
                                   address + " can be reached from other machines; give --token-file or "
                                             "--tls-client-ca too, or a loopback address");
}

std::variant<Options, int> read_options(int argc, const char* const* argv, std::ostream& output)
{
    Options options;
    CLI::App app(purpose, "zorbd");
    app.footer(footer);
    app.set_version_flag("--version", std::string("zorbd ") + version);
    app.set_config("--config", "", "Configuration file with the long option names as keys")
        ->type_name("FILE");
    app.allow_config_extras(CLI::config_extras_mode::error);
    add_plugins(app, options);
    add_listeners(app, options);
    add_tls(app, options);
    add_limits(app, options);
    add_events(app, options);
    try {
        app.parse(argc, argv);
        check_together(options);
        options.settings = settings_of(app);
        return options;
    } catch (const CLI::ParseError& end) {
        return end_early(app, end, output);
    }
}

} // namespace zorbd
