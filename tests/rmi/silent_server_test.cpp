// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "rmi_test.h"

namespace {

using drill::Server;
using test_support::ChildProcess;

class SilentServer : public drill::RmiTest
{
protected:
    /// Of the server and its client: how long the server may be silent before calls to it fail.
    ChildProcess::Environment short_lease() const { return drill::with_lease(domain(), "1s"); }

    /// Asks the client for its counts until the one called `name` is above zero.
    static bool counts_some(ChildProcess& client, const std::string& name)
    {
        const auto deadline = std::chrono::steady_clock::now() + test_support::event_deadline;
        while (std::chrono::steady_clock::now() < deadline) {
            client.write("so far\n");
            const auto counts = client.wait_for_line("so far");
            if (!counts)
                return false;
            if (counts->find(' ' + name + "=0 ") == std::string::npos)
                return true;
        }
        return false;
    }
};

TEST_F(SilentServer, runs_all_that_it_was_sent_once_it_goes_on)
{
    Server server({}, short_lease());
    ChildProcess client({DRILL_CLIENT, "--timeout", "60000", "--window", "100000", "load", "--caller", "1",
                         "--pause", "1000"},
                        short_lease());
    ASSERT_TRUE(client.wait_for_line("bound"));
    ASSERT_TRUE(counts_some(client, "replied"));

    server.process().signal(SIGSTOP);
    EXPECT_TRUE(counts_some(client, "not_found"));
    server.process().signal(SIGCONT);

    EXPECT_TRUE(counts_some(client, "replied"));
    client.close_input();
    const auto done = client.wait_for_line("done");
    ASSERT_TRUE(done);
    EXPECT_NE(done->find(" wrong=0 given_up=0 "), std::string::npos) << *done;
    EXPECT_EQ(client.error_output().find("gave up"), std::string::npos) << client.error_output();
}

} // namespace
