// SPDX-License-Identifier: Apache-2.0
#include <random>
#include <string>
#include <vector>

#include "contract/network_limits.h"
#include "network_test.h"

namespace {

/// Texts that are often nearly right, always the same ones in the same order.
class TextSource
{
public:
    std::string text()
    {
        std::string result;
        for (int pieces = number(0, 6); pieces > 0; --pieces)
            result += piece();
        return result;
    }

    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    int any_number() { return static_cast<int>(m_random()); }

private:
    std::string piece()
    {
        static const std::vector<std::string> pieces = {"00:00:00:00:00:0A",
                                                        "00-00-00-00-00-0b",
                                                        "00000000000C",
                                                        ",",
                                                        ";",
                                                        " ",
                                                        "=",
                                                        "key=value",
                                                        "interval=30",
                                                        "a=1;a=1",
                                                        ":",
                                                        "-",
                                                        "\xc3\xa9",
                                                        "FF:FF:FF:FF:FF:FF",
                                                        "\n",
                                                        "00:00:00:",
                                                        "0",
                                                        "%s%n"};
        const int choice = number(0, static_cast<int>(pieces.size()) + 2);
        if (choice < static_cast<int>(pieces.size()))
            return pieces[static_cast<std::size_t>(choice)];
        const auto length = static_cast<std::size_t>(number(0, choice == 18 ? 40'000 : 40));
        return std::string(length, static_cast<char>(number(0, 255)));
    }

    std::mt19937 m_random; // the default seed
};

using varnel::Reply;
using varnel::SensorNetwork;

Reply random_call(SensorNetwork& network, TextSource& source)
{
    switch (source.number(1, 14)) {
    case 1:
        return network.network_commission(source.text());
    case 2:
        return source.number(0, 20) == 0 ? network.network_decommission() : Reply{};
    case 3:
        return network.network_add_nodes(source.text());
    case 4:
        return network.network_remove_nodes(source.text());
    case 5:
        return network.advertising(source.number(0, 1) == 1);
    case 6:
        return network.network_get_node_list();
    case 7:
        return network.network_get_info();
    case 8:
        return network.node_get_config(source.text());
    case 9:
        return network.node_set_config(source.text(), source.text());
    case 10:
        return network.node_get_data(source.text());
    case 11:
        return network.network_get_nodes_status(source.text());
    case 12:
        return network.node_set_config_revert(source.text(), source.text(), source.any_number());
    case 13:
        return network.test_node_create(source.text(), source.number(-3, 300));
    default:
        return network.test_node_set_sensor_data(source.text(), source.text());
    }
}

bool is_documented(int value)
{
    return value >= 0 ? value <= static_cast<int>(varnel::limits::nodes)
                      : !varnel::failure_name(value).empty();
}

} // namespace

using HostileInput = NetworkTest;

TEST_F(HostileInput, is_answered_with_a_documented_reply_and_never_internal_error)
{
    TextSource source;
    int successes = 0;
    for (int call = 0; call < 30'000; ++call) {
        const Reply reply = random_call(network, source);

        ASSERT_TRUE(is_documented(reply.value)) << reply.value;
        ASSERT_NE(reply.value, failed(varnel::Failure::internal_error));
        successes += reply.value >= 0 ? 1 : 0;
    }
    EXPECT_GT(successes, 1000) << "the texts are too wrong to test anything behind the parsers";
}

TEST_F(HostileInput, does_not_make_the_network_grow_without_bound)
{
    network.network_commission(a);
    for (unsigned address = 1; address <= 3000; ++address) {
        char text[16];
        std::snprintf(text, sizeof text, "10%010x", address);
        network.test_node_create(text, 0);
    }

    EXPECT_EQ(network.network_get_node_list().value, static_cast<int>(varnel::limits::nodes));
}
