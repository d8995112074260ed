// SPDX-License-Identifier: Apache-2.0
#include <iomanip>
#include <iostream>

#include "commands.h"
#include "description.h"
#include "exit_code.h"

namespace zorbctl {
namespace {

/// "mac_addr newCfg [duration]": what a method takes, the optional ones in brackets.
std::string keys_of(const Json& method)
{
    std::string keys;
    for (const Json& param : method.value("params", Json::array())) {
        const std::string name = param.value("name", "");
        keys += (keys.empty() ? "" : " ") + (param.value("required", false) ? name : '[' + name + ']');
    }
    return keys;
}

void print_param(const Json& param)
{
    std::cout << "  " << std::left << std::setw(16) << param.value("name", "")
              << type_text(param.value("schema", Json::object()))
              << (param.value("required", false) ? ", required" : "") << '\n';
    for (const char* part : {"summary", "description"})
        if (param.contains(part))
            std::cout << std::setw(18) << "" << param.value(part, "") << '\n';
}

std::string example_of(const Json& method)
{
    std::string command = "zorbctl call " + method.value("name", "");
    for (const Json& example : method.value("examples", Json::array())) {
        for (const Json& param : example.value("params", Json::array())) {
            const Json value = param.value("value", Json());
            const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
            const bool is_plain =
                text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                       "0123456789:.,_-=") == std::string::npos;
            command += ' ' + param.value("name", "") + '=' + (is_plain ? text : '\'' + text + '\'');
        }
        break;
    }
    return command;
}

void print_reply(const Json& reply)
{
    std::cout << "\nLater, a line:\n  " << reply.value("line", "") << "NUMBER    ("
              << reply.value("success", "") << ")\n";
    const Json failures = reply.value("failures", Json::object());
    for (const auto& [code, meaning] : failures.items())
        std::cout << "  " << std::right << std::setw(3) << code << "  " << meaning.get<std::string>() << '\n';
}

} // namespace

int list_methods(Client& client, const Options& options)
{
    const Json methods = client.result_of("rpc.discover").value("methods", Json::array());
    if (options.json) {
        std::cout << methods.dump() << '\n';
        return exit_done;
    }
    for (const Json& method : methods)
        std::cout << std::left << std::setw(28) << method.value("name", "") << std::setw(30)
                  << keys_of(method) << method.value("summary", "") << '\n';
    return exit_done;
}

int describe_method(Client& client, const Options& options)
{
    const Json method = find_method(client.result_of("rpc.discover"), options.method);
    if (options.json) {
        std::cout << method.dump() << '\n';
        return exit_done;
    }
    std::cout << method.value("name", "") << ": " << method.value("summary", "") << '\n'
              << method.value("description", "") << "\n\nParameters:\n";
    for (const Json& param : method.value("params", Json::array()))
        print_param(param);
    if (method.value("params", Json::array()).empty())
        std::cout << "  none\n";
    if (method.contains("x-reply"))
        print_reply(method["x-reply"]);
    std::cout << "\nExample:\n  " << example_of(method) << '\n';
    return exit_done;
}

int tell_health(Client& client, const Options& options)
{
    const Answer answer = client.get("/healthz");
    const Json report = Json::parse(answer.body, nullptr, false);
    const int code = answer.status == 200   ? exit_done
                     : answer.status == 503 ? exit_unhealthy
                                            : exit_unreachable;
    if (options.json || !report.is_object() || !report.contains("status")) {
        std::cout << answer.body << '\n';
        return code;
    }
    std::cout << report.value("status", "") << '\n';
    for (const Json& plugin : report.value("plugins", Json::array())) {
        std::cout << "  " << plugin.value("file", "") << ": "
                  << (plugin.value("bound", false)
                          ? "bound, " + plugin.value("methods", Json(0)).dump() + " methods"
                          : "waits for its service");
        if (const int stuck = plugin.value("stuck", 0))
            std::cout << ", calls that take too long: " << stuck;
        std::cout << '\n';
    }
    for (const Json& service : report.value("services", Json::array()))
        if (!service.value("reachable", true))
            std::cout << "  service " << service.value("name", "") << " cannot be reached\n";
    for (const Json& stream : report.value("streams", Json::array()))
        if (stream.contains("trouble") || stream.value("dropped", 0) != 0)
            std::cout << "  " << stream.value("name", "") << ": "
                      << stream.value("trouble", "all is well again") << ", " << stream.value("dropped", 0)
                      << " lines dropped\n";
    return code;
}

} // namespace zorbctl
