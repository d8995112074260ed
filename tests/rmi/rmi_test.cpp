// SPDX-License-Identifier: Apache-2.0
#include "rmi_test.h"

#include <array>
#include <csignal>
#include <stdexcept>

namespace drill {

namespace {

using test_support::ChildProcess;

std::vector<std::string> command(const std::string& program, const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

} // namespace

Server::Server(const std::vector<std::string>& options, const ChildProcess::Environment& environment)
    : m_process(command(DRILL_SERVER, options), environment)
{
    if (!m_process.wait_for_line("serving"))
        throw std::runtime_error("the server did not start: " + m_process.error_output());
}

Server::~Server()
{
    if (m_killed)
        return;
    m_process.close_input();
    EXPECT_EQ(m_process.wait_for_exit(), 0) << m_process.error_output();
}

void Server::expect_at_gate(int count)
{
    EXPECT_TRUE(m_process.wait_for_line("at the gate: " + std::to_string(count)));
}

void Server::kill()
{
    m_killed = true;
    m_process.signal(SIGKILL);
    m_process.wait_for_exit();
}

Client::Client(const std::vector<std::string>& arguments) : ChildProcess(command(DRILL_CLIENT, arguments)) {}

void Client::expect_success()
{
    EXPECT_EQ(wait_for_exit(), 0) << output() << error_output();
}

RmiTest::RmiTest() : m_runtime(rmi::CRuntime::getDefaultRuntime())
{
    std::array<const char*, 2> arguments{"rmi_test", "--RMIServiceDiscoveryTimeout=60"};
    if (!m_runtime->start(arguments.size(), arguments.data()))
        throw std::runtime_error("the RMI runtime did not start");
}

RmiTest::~RmiTest()
{
    m_runtime->stop();
}

Proxy RmiTest::find_proxy(DDS::Long server_instance)
{
    Proxy proxy;
    if (!rmi::DDS_Service::getServerProxy("drill", server_instance, 1, proxy))
        throw std::runtime_error("the service is there, but its proxy is not");
    return proxy;
}

void RmiTest::call_echo(const Proxy& proxy, const std::shared_ptr<Tally>& tally, DDS::Long value,
                        const EchoHandler::Then& then)
{
    const rmi::shared_ptr<EchoHandler> handler(new EchoHandler(tally, value, then));
    proxy->async_echo(value, handler.get());
}

void RmiTest::call_gated(const Proxy& proxy, const std::shared_ptr<Tally>& tally, DDS::Long value)
{
    const rmi::shared_ptr<GatedHandler> handler(new GatedHandler(tally, value));
    proxy->async_gated(value, handler.get());
}

ChildProcess::Environment with_lease(const test_support::DdsDomain& domain, const std::string& duration)
{
    const std::string end = "</Discovery>";
    std::string uri = domain.uri();
    uri.insert(uri.find(end), "<LeaseDuration>" + duration + "</LeaseDuration>");
    return {{"CYCLONEDDS_URI", uri}};
}

} // namespace drill
