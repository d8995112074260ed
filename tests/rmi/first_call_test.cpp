// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <list>
#include <memory>

#include "rmi_test.h"

namespace {

using drill::Client;
using drill::Proxy;
using drill::Server;
using drill::Tally;
namespace rmi = org::opensplice::DDS_RMI;

using FirstCall = drill::RmiTest;

TEST_F(FirstCall, of_every_fresh_process_is_answered)
{
    constexpr int rounds = 5;
    constexpr int clients_at_a_time = 3;
    const Server server;

    for (int round = 0; round < rounds; ++round) {
        std::list<Client> clients;
        for (int i = 0; i < clients_at_a_time; ++i)
            clients.emplace_back(std::vector<std::string>{"once"});
        for (Client& client : clients)
            client.expect_success();
    }
}

TEST_F(FirstCall, of_processes_that_wait_for_the_server_is_answered)
{
    constexpr int rounds = 3;
    constexpr int clients_at_a_time = 3;

    for (int round = 0; round < rounds; ++round) {
        std::list<Client> clients;
        for (int i = 0; i < clients_at_a_time; ++i)
            clients.emplace_back(std::vector<std::string>{"once"});
        for (Client& client : clients)
            EXPECT_TRUE(client.wait_for_line("looking"));

        const Server server;
        for (Client& client : clients)
            client.expect_success();
    }
}

TEST_F(FirstCall, of_every_fresh_proxy_is_answered)
{
    constexpr int rounds = 20;
    const Server server;

    for (int round = 0; round < rounds; ++round) {
        const Proxy proxy = find_proxy();
        const auto tally = std::make_shared<Tally>();
        call_echo(proxy, tally, round);
        EXPECT_TRUE(tally->wait_for_replies(1));
        EXPECT_EQ(tally->wrong(), 0U);
    }
}

/// One call of each of the three operations that note in which order they are run.
DDS::Long note_three(const Proxy& proxy, const std::shared_ptr<Tally>& tally, DDS::Long last_number)
{
    const rmi::shared_ptr<drill::NoteRedHandler> red(new drill::NoteRedHandler(tally, last_number + 1));
    proxy->async_note_red(last_number + 1, red.get());
    const rmi::shared_ptr<drill::NoteGreenHandler> green(new drill::NoteGreenHandler(tally, last_number + 2));
    proxy->async_note_green(last_number + 2, green.get());
    const rmi::shared_ptr<drill::NoteBlueHandler> blue(new drill::NoteBlueHandler(tally, last_number + 3));
    proxy->async_note_blue(last_number + 3, blue.get());
    return last_number + 3;
}

TEST_F(FirstCall, and_those_after_it_are_run_in_the_order_in_which_they_were_made)
{
    constexpr int rounds = 10;
    constexpr std::size_t triples = 20;
    const Server server({"--threads", "ST"});

    DDS::Long number = 0;
    for (int round = 0; round < rounds; ++round) {
        const Proxy proxy = find_proxy();
        const auto tally = std::make_shared<Tally>();
        for (std::size_t i = 0; i < triples; ++i)
            number = note_three(proxy, tally, number);
        EXPECT_TRUE(tally->wait_for_replies(3 * triples));
        EXPECT_EQ(tally->wrong(), 0U);
        EXPECT_EQ(proxy->disorder(), 0U);
    }
}

TEST_F(FirstCall, fails_with_the_name_of_a_service_that_nobody_offers)
{
    const rmi::CRuntime_ref impatient = rmi::CRuntime::getDefaultRuntime();
    std::array<const char*, 2> arguments{"test", "--RMIServiceDiscoveryTimeout=1"};
    ASSERT_TRUE(impatient->start(arguments.size(), arguments.data()));

    const auto start = std::chrono::steady_clock::now();
    try {
        find_proxy();
        ADD_FAILURE() << "there was a server";
    } catch (const rmi::SERVICE_NOT_FOUND& error) {
        EXPECT_NE(std::string(error.what()).find("'drill'"), std::string::npos) << error.what();
    }
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    impatient->stop();
}

} // namespace
