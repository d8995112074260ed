// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "rmi_test.h"

namespace {

using drill::Client;
using drill::Proxy;
using drill::Server;
using test_support::ChildProcess;

std::vector<std::string> intruder_command(const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{DRILL_INTRUDER};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

class HostilePeer : public drill::RmiTest
{
protected:
    /// Returns when it has done what it is there for.
    class Intruder : public ChildProcess
    {
    public:
        explicit Intruder(const std::vector<std::string>& arguments)
            : ChildProcess(intruder_command(arguments))
        {
            EXPECT_TRUE(wait_for_line("done")) << error_output();
        }
        ~Intruder()
        {
            close_input();
            EXPECT_EQ(wait_for_exit(), 0) << error_output();
        }
        Intruder(Intruder&&) = delete;
        Intruder& operator=(Intruder&&) = delete;
    };

    /// A client that calls until it is told to end.
    class Bystander : public Client
    {
    public:
        Bystander() : Client({"load", "--caller", "1", "--pause", "500"})
        {
            EXPECT_TRUE(wait_for_line("bound")) << error_output();
        }
        void expect_undisturbed()
        {
            close_input();
            expect_success();
            EXPECT_NE(output().find(" wrong=0 given_up=0 timeouts=0 not_found=0 "), std::string::npos)
                << output();
        }
    };

    /// That it has been told, and no more often than once in ten seconds.
    void expect_told(ChildProcess& process, const std::string& text) const
    {
        const bool was_told = process.error_output().find(text) != std::string::npos;
        EXPECT_TRUE(was_told || process.wait_for_error_line(text)) << process.error_output();
        const std::string all = process.error_output();
        std::chrono::seconds::rep lines = 0;
        for (auto at = all.find(text); at != std::string::npos; at = all.find(text, at + 1))
            ++lines;
        const auto passed = std::chrono::steady_clock::now() - m_start;
        EXPECT_LE(lines, 1 + std::chrono::duration_cast<std::chrono::seconds>(passed).count() / 10) << all;
    }

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

constexpr const char* misdirected =
    "dropped a message to service 'drill' that is for another server or from no known client";

TEST_F(HostilePeer, that_publishes_noise_disturbs_neither_server_nor_clients)
{
    Server server;
    Bystander bystander;
    const std::string undecodable = "dropped a sample that cannot be decoded";

    const Intruder intruder({"noise"});

    EXPECT_EQ(find_proxy()->echo(7), 7);
    bystander.expect_undisturbed();
    expect_told(server.process(), misdirected);
    expect_told(server.process(), undecodable);
    expect_told(bystander, "dropped a reply of service 'drill' to a request that is not outstanding");
    expect_told(bystander, undecodable);
}

TEST_F(HostilePeer, that_has_no_session_has_nothing_run)
{
    const Server server;
    const Proxy proxy = find_proxy();

    const Intruder noise({"noise"});
    const Intruder thief({"steal"});

    EXPECT_EQ(proxy->runs(), 0U);
}

TEST_F(HostilePeer, that_breaks_its_session_has_nothing_more_run_in_it)
{
    Server server;
    Bystander bystander;
    const Proxy proxy = find_proxy();

    Intruder intruder({"break"});

    bystander.expect_undisturbed();
    EXPECT_EQ(proxy->echo(7), 7);
    expect_told(server.process(), "ended a session of service 'drill' whose client sent what cannot follow");
}

TEST_F(HostilePeer, that_breaks_its_session_gets_done_what_it_had_right)
{
    const Server server;
    const Proxy proxy = find_proxy();

    const Intruder intruder({"break"});

    EXPECT_NE(intruder.output().find("runs=" + std::to_string(proxy->runs()) + '\n'), std::string::npos)
        << intruder.output() << proxy->runs();
}

TEST_F(HostilePeer, that_greets_again_and_again_disturbs_neither_server_nor_clients)
{
    Server server;
    Bystander bystander;

    const Intruder intruder({"greet", "--count", "20000"});

    EXPECT_EQ(find_proxy()->echo(7), 7);
    bystander.expect_undisturbed();
    expect_told(server.process(), "began the session of a client of service 'drill' anew");
}

TEST_F(HostilePeer, that_claims_to_be_the_server_does_not_keep_clients_from_it)
{
    const Server server;
    const Proxy proxy = find_proxy();
    {
        const Intruder intruder({"announce"});
        EXPECT_EQ(proxy->echo(7), 7);
        EXPECT_EQ(find_proxy()->echo(8), 8);
    }
    EXPECT_EQ(proxy->echo(9), 9);
}

TEST_F(HostilePeer, that_announces_another_wire_version_is_told_to_both_sides)
{
    Server server;
    Bystander bystander;
    const std::string other_version = "ignored a server whose RMI layer is of another version";

    const Intruder intruder({"announce"});

    expect_told(server.process(), other_version);
    expect_told(bystander, other_version);
    bystander.expect_undisturbed();
}

TEST_F(HostilePeer, that_is_busy_for_ever_makes_calls_time_out)
{
    const Intruder server({"busy"});
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<drill::Tally>();

    EXPECT_THROW(proxy->echo(7), drill::rmi::TIMEOUT);
    EXPECT_THROW(call_echo(proxy, tally, 7), drill::rmi::TIMEOUT);

    EXPECT_TRUE(tally->wait_for_releases(1));
    EXPECT_EQ(tally->replies(), 0U);
}

TEST_F(HostilePeer, that_begins_another_session_by_itself_leaves_no_call_without_an_end)
{
    const Intruder server({"restless"});
    const Proxy proxy = find_proxy();

    EXPECT_THROW(proxy->echo(7), drill::rmi::SERVICE_NOT_FOUND);
    EXPECT_THROW(proxy->echo(8), drill::rmi::SERVICE_NOT_FOUND);
}

} // namespace
