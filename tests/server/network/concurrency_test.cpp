// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "network_test.h"

using varnel::Failure;

namespace {

constexpr int workers = 8;
constexpr int rounds = 200;

/// Runs `work` on several threads at a time, each with its number, and waits for all.
template <class Work>
void in_parallel(Work work)
{
    std::vector<std::thread> threads;
    threads.reserve(workers);
    for (int worker = 0; worker < workers; ++worker)
        threads.emplace_back([work, worker] { work(worker); });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

using ConcurrentCalls = NetworkTest;

TEST_F(ConcurrentCalls, let_one_caller_win_each_node)
{
    network.network_commission(a);
    std::atomic<int> winners{0};

    in_parallel([&](int) {
        for (int round = 0; round < rounds; ++round) {
            const std::string address = "0000000001" + std::to_string(10 + round % 90);
            if (network.test_node_create(address, 0).value == 0)
                ++winners;
        }
    });

    EXPECT_EQ(winners, 90);
    EXPECT_EQ(network.network_get_node_list().value, 91);
}

TEST_F(ConcurrentCalls, see_a_configuration_of_one_caller_whole)
{
    network.network_commission(a);
    std::atomic<int> torn{0};

    in_parallel([&](int worker) {
        const std::string value = std::to_string(worker);
        const std::string new_config = std::string("x=").append(value).append(";y=").append(value);
        for (int round = 0; round < rounds; ++round) {
            network.node_set_config_revert(a, new_config, 1 + round % 3);
            const std::string config = network.node_get_config(a).detail;
            if (!config.empty() && config[2] != config.back())
                ++torn;
            if (round % 50 == 0)
                clock.advance(std::chrono::seconds(1));
        }
    });

    EXPECT_EQ(torn, 0);
}

TEST_F(ConcurrentCalls, leave_all_or_none_of_a_list)
{
    std::atomic<int> partial{0};

    in_parallel([&](int worker) {
        for (int round = 0; round < rounds; ++round) {
            network.network_commission("00000000000A 00000000000B 00000000000C");
            const int nodes = network.network_get_node_list().value;
            if (nodes != 3 && nodes != failed(Failure::not_commissioned))
                ++partial;
            if (worker % 2 == 0)
                network.network_decommission();
        }
    });

    EXPECT_EQ(partial, 0);
}
