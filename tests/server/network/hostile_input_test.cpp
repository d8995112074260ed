// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "VarnelRMI_operations.h"

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

/// An argument of a parameter's type, which lives while the call is made.
template <class Parameter>
struct RandomArgument;

template <>
struct RandomArgument<std::string_view>
{
    explicit RandomArgument(TextSource& source) : value(source.text()) {}
    std::string value;
};

template <>
struct RandomArgument<bool>
{
    explicit RandomArgument(TextSource& source) : value(source.number(0, 1) == 1) {}
    bool value;
};

template <>
struct RandomArgument<int>
{
    explicit RandomArgument(TextSource& source)
        : value(source.number(0, 1) == 0 ? source.number(-3, 300) : source.any_number())
    {
    }
    int value;
};

using Call = std::function<Reply(SensorNetwork&, TextSource&)>;

template <class... Parameters>
Call random_call(Reply (SensorNetwork::*operation)(Parameters...))
{
    return [operation](SensorNetwork& network, [[maybe_unused]] TextSource& source) {
        return (network.*operation)(RandomArgument<Parameters>(source).value...);
    };
}

const std::vector<Call>& calls()
{
#define RANDOM_CALL(op, ...) random_call(&SensorNetwork::op),
    static const std::vector<Call> all = {FOR_EVERY_OPERATION(RANDOM_CALL)};
#undef RANDOM_CALL
    return all;
}

/// Makes one of them. A network that has ended, as one in so many calls makes it, is made anew.
Reply random_call(SensorNetwork& network, TextSource& source)
{
    const int choice = source.number(0, static_cast<int>(calls().size()) - 1);
    const Reply reply = calls()[static_cast<std::size_t>(choice)](network, source);
    if ((network.network_get_info().value & SensorNetwork::info_commissioned) == 0)
        network.network_commission("00:00:00:00:00:0A");
    return reply;
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
