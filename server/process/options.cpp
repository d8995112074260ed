// SPDX-License-Identifier: Apache-2.0
#include "process/options.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "contract/network_limits.h"
#include "network/node_type.h"
#include "process/exit_code.h"

namespace varnel {

namespace {

constexpr int longest_delay_ms = 600'000;
constexpr int most_threads = 64;
constexpr std::size_t longest_service_name = 255;

constexpr const char* description =
    "Serves the Varnel sensor network's RMI service over a simulated network. Writes one line for each call\n"
    "on standard output. Ends on SIGTERM or SIGINT.";

constexpr const char* footer =
    "Exit codes: 0 stopped by a signal, 1 the service cannot be offered, 2 bad command line.\n"
    "DDS is configured by CYCLONEDDS_URI.";

[[noreturn]] void refuse(const std::string& node, const std::string& what)
{
    throw CLI::ValidationError("--node", "'" + node + "': " + what);
}

MacAddress node_address(const std::string& node)
{
    const std::optional<MacAddress> address = MacAddress::parse(node.substr(0, node.find('=')));
    if (!address)
        refuse(node, "give a MAC address such as 00:1A:2B:3C:4D:5E, then '=' and a type code if you like");
    return *address;
}

int node_type(const std::string& node)
{
    const std::size_t sign = node.find('=');
    if (sign == std::string::npos)
        return 0;
    int type = 0;
    if (!CLI::detail::lexical_cast(node.substr(sign + 1), type) || !is_node_type(type))
        refuse(node, "the type code must be a number from 0 to " + std::to_string(limits::highest_type));
    return type;
}

void add_node(std::map<MacAddress, int>& nodes, const std::string& node)
{
    if (!nodes.emplace(node_address(node), node_type(node)).second)
        refuse(node, "the address is given twice");
    if (nodes.size() > limits::nodes)
        refuse(node, "a network has at most " + std::to_string(limits::nodes) + " nodes");
}

std::string check_service_name(const std::string& name)
{
    if (name.empty() || name.size() > longest_service_name)
        return "a service name has 1 to " + std::to_string(longest_service_name) + " characters";
    return {};
}

void declare_service_options(CLI::App& app, Options& options, int& delay_ms)
{
    app.add_option("--instance", options.instance, "Instance number of the service")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()))
        ->capture_default_str();
    app.add_option("--service", options.service, "Name of the service")
        ->check(check_service_name)
        ->capture_default_str();
    app.add_option("--delay", delay_ms, "Milliseconds to wait before each reply")
        ->check(CLI::Range(0, longest_delay_ms))
        ->capture_default_str();
    app.add_option("--threads", options.threads, "Number of calls that are served at the same time")
        ->check(CLI::Range(1, most_threads))
        ->capture_default_str();
}

void declare_network_options(CLI::App& app, Options& options, std::vector<std::string>& nodes)
{
    app.add_flag("--commissioned", options.is_commissioned, "Start with a commissioned network");
    app.add_option("--node", nodes, "Start with a commissioned network that has this node (repeatable)")
        ->type_name("MAC[=TYPE]")
        ->take_all()
        ->expected(1);
}

void take_nodes(Options& options, const std::vector<std::string>& nodes)
{
    for (const std::string& node : nodes)
        add_node(options.nodes, node);
    options.is_commissioned = options.is_commissioned || !nodes.empty();
}

} // namespace

std::variant<Options, int> parse_options(int argc, const char* const* argv)
{
    Options options;
    std::vector<std::string> nodes;
    int delay_ms = 0;
    CLI::App app(description, "varnelde");
    app.footer(footer);
    app.set_version_flag("--version", "varnelde " VARNELDE_VERSION);
    declare_service_options(app, options, delay_ms);
    declare_network_options(app, options, nodes);
    try {
        app.parse(argc, argv);
        take_nodes(options, nodes);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? exit_done : exit_usage;
    }
    options.delay = std::chrono::milliseconds(delay_ms);
    return options;
}

} // namespace varnel
