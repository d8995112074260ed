// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_RMI_TEST_H
#define TESTS_RMI_RMI_TEST_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ddsrmi.h"
#include "drill_InterfaceProxy.h"
#include "reply_handlers.h"
#include "support/child_process.h"
#include "support/dds_domain.h"

namespace drill {

namespace rmi = org::opensplice::DDS_RMI;
using Proxy = rmi::shared_ptr<DDS_RMI::Drill::RangeInterfaceProxy>;

/// A server process. Its end is expected to be a clean one unless it is killed.
class Server
{
public:
    /// Returns when it serves, which may be before clients can see it.
    explicit Server(const std::vector<std::string>& options = {},
                    const test_support::ChildProcess::Environment& environment = {});
    ~Server();
    Server(Server&&) = delete;
    Server& operator=(Server&&) = delete;

    void open_gate() { m_process.write("open\n"); }
    /// Waits until so many calls are held at the gate.
    void expect_at_gate(int count);

    /// With SIGKILL.
    void kill();

    test_support::ChildProcess& process() { return m_process; }

private:
    test_support::ChildProcess m_process;
    bool m_killed = false;
};

/// A client process.
class Client : public test_support::ChildProcess
{
public:
    explicit Client(const std::vector<std::string>& arguments);

    /// Waits for its end, which must be a clean one.
    void expect_success();
};

/// This process is a client, in a domain of its own.
class RmiTest : public testing::Test
{
public:
    RmiTest();
    ~RmiTest() override;

protected:
    /// Throws SERVICE_NOT_FOUND when there is no such server within the time for events.
    static Proxy find_proxy(DDS::Long server_instance = -1);

    /// One call made without waiting.
    static void call_echo(const Proxy& proxy, const std::shared_ptr<Tally>& tally, DDS::Long value,
                          const EchoHandler::Then& then = nullptr);
    static void call_gated(const Proxy& proxy, const std::shared_ptr<Tally>& tally, DDS::Long value);

    const test_support::DdsDomain& domain() const { return m_domain; }
    const rmi::CRuntime_ref& runtime() const { return m_runtime; }

private:
    test_support::DdsDomain m_domain;
    rmi::CRuntime_ref m_runtime;
};

/// The configuration of this domain with another lease: how long other processes believe that one is alive
/// which they do not hear.
test_support::ChildProcess::Environment with_lease(const test_support::DdsDomain& domain,
                                                   const std::string& duration);

} // namespace drill

#endif
