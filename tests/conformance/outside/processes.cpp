// SPDX-License-Identifier: Apache-2.0
#include "processes.h"

#include <csignal>

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace conformance {
namespace {

std::vector<std::string> with(std::vector<std::string> command, const std::vector<std::string>& arguments)
{
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

} // namespace

Server::Server(const std::vector<std::string>& replies) : m_process(with({RECORDING_SERVER}, replies))
{
    if (!m_process.wait_for_line("ready"))
        throw std::runtime_error("the server has not become ready: " + m_process.error_output());
}

std::string Server::next_call()
{
    return m_process.wait_for_line("(").value_or("");
}

std::size_t Server::calls() const
{
    const std::string output = m_process.output();
    return static_cast<std::size_t>(std::count(output.begin(), output.end(), '\n')) - 1;
}

void Server::pause()
{
    m_process.signal(SIGSTOP);
}

void Server::go_on()
{
    m_process.signal(SIGCONT);
}

void Server::end()
{
    m_process.close_input();
    if (!m_process.wait_for_exit())
        throw std::runtime_error("the server does not end");
}

Host::Host() : m_process({PLUGIN_HOST})
{
    const std::string answer = run(std::string("load ") + PLUGIN);
    if (answer != "loaded")
        throw std::runtime_error("the plug-in cannot be loaded: " + answer);
}

std::string Host::run(const std::string& command)
{
    m_process.write(command + "\n");
    const std::string mark = "answer> ";
    const std::string line = m_process.wait_for_error_line(mark).value_or(mark);
    return line.substr(line.find(mark) + mark.size());
}

std::string Host::next_line(const std::string& text)
{
    return m_process.wait_for_line(text).value_or("");
}

std::string Host::output_at_end()
{
    m_process.close_input();
    const std::optional<int> code = m_process.wait_for_exit();
    if (code != 0)
        throw std::runtime_error("the host has not ended well: " + m_process.error_output());
    return m_process.output();
}

std::vector<std::string> Host::messages() const
{
    const std::string mark = "syslog ";
    std::vector<std::string> found;
    std::istringstream lines(m_process.error_output());
    for (std::string line; std::getline(lines, line);)
        if (line.rfind(mark, 0) == 0)
            found.push_back(line.substr(mark.size()));
    return found;
}

} // namespace conformance
