// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <csignal>
#include <list>
#include <string>
#include <vector>

#include "rmi_test.h"

namespace {

using drill::Client;
using drill::Proxy;
using drill::Server;

/// One client makes calls all the time, and then fails in some way.
class OtherClients : public drill::RmiTest
{
protected:
    OtherClients() : m_failing({"load", "--caller", "100", "--window", "1000"})
    {
        EXPECT_TRUE(m_failing.wait_for_line("bound"));
        m_failing.write("started\n");
        EXPECT_TRUE(m_failing.wait_for_line("started"));
    }

    Client& failing() { return m_failing; }

    /// Starts clients that make so many calls, and waits until all of theirs are answered.
    static void expect_others_answered()
    {
        constexpr int clients = 3;
        std::list<Client> others;
        for (int caller = 1; caller <= clients; ++caller)
            others.emplace_back(
                std::vector<std::string>{"flood", "--calls", "3000", "--caller", std::to_string(caller)});
        for (Client& other : others)
            other.expect_success();
    }

private:
    Server m_server;
    Client m_failing;
};

bool lost_nothing(const Client& client)
{
    return client.output().find(" wrong=0 given_up=0 timeouts=0 not_found=0 ") != std::string::npos;
}

TEST_F(OtherClients, lose_nothing_when_one_is_killed)
{
    failing().signal(SIGKILL);

    expect_others_answered();
}

TEST_F(OtherClients, lose_nothing_while_one_is_stopped)
{
    failing().signal(SIGSTOP);
    expect_others_answered();
    failing().signal(SIGCONT);

    failing().close_input();
    failing().expect_success();
    EXPECT_TRUE(lost_nothing(failing())) << failing().output();
}

TEST_F(OtherClients, lose_nothing_when_one_is_killed_in_the_middle_of_their_calls)
{
    Client other({"load", "--caller", "1", "--window", "100"});
    ASSERT_TRUE(other.wait_for_line("bound"));

    failing().signal(SIGKILL);
    expect_others_answered();
    other.close_input();
    other.expect_success();

    EXPECT_NE(other.output().find(" given_up=0 timeouts=0 not_found=0 "), std::string::npos)
        << other.output();
}

} // namespace
