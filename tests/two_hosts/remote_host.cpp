// SPDX-License-Identifier: Apache-2.0
#include "remote_host.h"

#include <stdexcept>

#include "http_client.h"

namespace two_hosts {
namespace {

using test_support::ChildProcess;

[[noreturn]] void give_up(const std::string& what, const ChildProcess& process)
{
    throw std::runtime_error(what + "; it has written:\n" + process.output() + process.error_output());
}

} // namespace

ChildProcess start_server(const LinkedHosts& hosts)
{
    ChildProcess server = hosts.start(Side::server, {VARNELDE});
    if (!server.wait_for_line("ready"))
        give_up("varnelde has not become ready", server);
    return server;
}

RemoteHost::RemoteHost(const LinkedHosts& hosts)
    : m_process(hosts.start(Side::client, {ZORBD, "--unix-socket", socket(), "--plugin", PLUGIN}))
{
    for (const char* const line : {"zorbd: ready", "is bound and offers"})
        if (m_process.error_output().find(line) == std::string::npos && !m_process.wait_for_error_line(line))
            give_up("zorbd has not become ready and bound", m_process);
}

std::string RemoteHost::call(const std::string& method, const std::string& params) const
{
    const std::string body = R"({"jsonrpc": "2.0", "id": 1, "method": ")" + method + '"' +
                             (params.empty() ? "" : ", \"params\": " + params) + "}";
    return host_test::ask(socket(), host_test::post(body)).body;
}

int RemoteHost::count(const std::string& text) const
{
    int count = 0;
    const std::string output = m_process.output();
    for (auto found = output.find(text); found != std::string::npos; found = output.find(text, found + 1))
        ++count;
    return count;
}

bool is_accepted(const std::string& answer)
{
    return answer.find("\"result\":0") != std::string::npos;
}

} // namespace two_hosts
