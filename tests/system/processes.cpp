// SPDX-License-Identifier: Apache-2.0
#include "processes.h"

#include <sstream>
#include <stdexcept>

namespace system_test {
namespace {

using test_support::ChildProcess;

Options with(Options command, const Options& options)
{
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

[[noreturn]] void give_up(const std::string& what, const ChildProcess& process)
{
    throw std::runtime_error(what + "; it has written:\n" + process.output() + process.error_output());
}

std::string listening_address(ChildProcess& process)
{
    const std::string host = "127.0.0.1:";
    const std::string line = process.wait_for_error_line(host).value_or("");
    const std::size_t begin = line.find(host);
    if (begin == std::string::npos)
        give_up("zorbd has not said where it listens", process);
    return line.substr(begin, line.find_first_not_of("0123456789", begin + host.size()) - begin);
}

} // namespace

ChildProcess start_server(const Options& options, const Environment& environment)
{
    ChildProcess server(with({VARNELDE}, options), environment);
    if (!server.wait_for_line("ready"))
        give_up("varnelde has not become ready", server);
    return server;
}

Host::Host(const Options& options, const Environment& environment)
    : m_process(with({ZORBD, "--listen", "127.0.0.1:0", "--plugin", PLUGIN}, options), environment),
      m_address(listening_address(m_process))
{
}

void Host::wait_until_bound()
{
    // It may have been said before it said where it listens, and that line has been read.
    const std::string bound = "is bound and offers";
    if (m_process.error_output().find(bound) == std::string::npos && !m_process.wait_for_error_line(bound))
        give_up("the plug-in has not found its service", m_process);
}

std::string Host::call(const std::string& method, const std::string& params) const
{
    ChildProcess curl({"curl", "--silent", "--show-error", "--noproxy", "*", "--max-time", "60", "--header",
                       "Content-Type: application/json", "--data-binary", "@-", "http://" + m_address + "/"});
    curl.write(R"({"jsonrpc": "2.0", "id": 1, "method": ")" + method + '"' +
               (params.empty() ? "" : ", \"params\": " + params) + "}");
    curl.close_input();
    curl.wait_for_exit();
    return curl.output() + curl.error_output();
}

std::string Host::health() const
{
    ChildProcess curl({"curl", "--silent", "--show-error", "--noproxy", "*", "--max-time", "60",
                       "http://" + m_address + "/healthz"});
    curl.wait_for_exit();
    return curl.output() + curl.error_output();
}

std::string Host::next_line(const std::string& text)
{
    return m_process.wait_for_line(text).value_or("");
}

int count_lines(const std::string& text, const std::string& beginning)
{
    int count = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        count += line.rfind(beginning, 0) == 0 ? 1 : 0;
    return count;
}

} // namespace system_test
