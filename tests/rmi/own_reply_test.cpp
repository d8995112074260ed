// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "rmi_test.h"
#include "stamp_stream.h"

namespace {

using drill::Client;
using drill::Proxy;
using drill::Server;
using drill::StampStream;
using drill::StreamResult;
using drill::Tally;

using OwnReply = drill::RmiTest;

StreamResult make_calls(const Proxy& proxy, DDS::Long caller, std::size_t calls)
{
    constexpr std::size_t window = 100;
    StampStream stream(proxy, 1, caller, window);
    for (std::size_t i = 0; i < calls; ++i)
        stream.call();
    EXPECT_TRUE(stream.finish(test_support::event_deadline));
    return stream.take_result();
}

TEST_F(OwnReply, reaches_each_of_two_proxies_of_the_same_name_and_number_in_one_process)
{
    constexpr std::size_t calls = 2000;
    const Server server;
    const Proxy first = find_proxy();
    const Proxy second = find_proxy();

    StreamResult first_result;
    std::thread other([&] { first_result = make_calls(first, 1, calls); });
    const StreamResult second_result = make_calls(second, 2, calls);
    other.join();

    for (const StreamResult& result : {first_result, second_result}) {
        EXPECT_EQ(result.replied, calls);
        EXPECT_EQ(result.wrong, 0U);
    }
    EXPECT_EQ(first->runs(), 2 * calls);
    EXPECT_EQ(first->repeats(), 0U);
}

std::string server_of(int caller)
{
    return caller % 2 == 0 ? "2" : "1";
}

TEST_F(OwnReply, reaches_each_of_several_processes_from_the_one_server_that_it_called)
{
    constexpr int clients = 4;
    constexpr unsigned calls = 1000;
    const Server first({"--instance", "1"});
    const Server second({"--instance", "2"});

    std::list<Client> processes;
    for (int caller = 1; caller <= clients; ++caller)
        processes.emplace_back(std::vector<std::string>{"flood", "--calls", std::to_string(calls), "--caller",
                                                        std::to_string(caller), "--instance",
                                                        server_of(caller)});
    for (Client& process : processes)
        process.expect_success();

    for (const DDS::Long instance : {1, 2}) {
        const Proxy proxy = find_proxy(instance);
        EXPECT_EQ(proxy->runs(), clients / 2 * calls);
        EXPECT_EQ(proxy->repeats(), 0U);
    }
}

TEST_F(OwnReply, comes_to_each_of_very_many_outstanding_requests)
{
    constexpr DDS::Long requests = 20'000;
    Server server({"--threads", "MT,2"});
    const Proxy proxy = find_proxy();
    const auto tally = std::make_shared<Tally>();

    for (DDS::Long i = 0; i < requests; ++i)
        call_gated(proxy, tally, i);
    server.expect_at_gate(2);
    EXPECT_EQ(tally->replies(), 0U);
    server.open_gate();

    EXPECT_TRUE(tally->wait_for_releases(requests));
    EXPECT_EQ(tally->replies(), static_cast<std::size_t>(requests));
    EXPECT_EQ(tally->wrong(), 0U);
}

} // namespace
