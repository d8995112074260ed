// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_INPUT_H
#define TESTS_RMI_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// One input: a byte that chooses the topic, a byte of switches, and a serialized sample.
struct Input
{
    static constexpr std::uint8_t dispose = 1; ///< end the sample's instance, too
    static constexpr std::uint8_t answer = 2;  ///< make the sample the reply to an outstanding request

    std::uint8_t topic;
    std::uint8_t switches;
    const std::uint8_t* sample;
    std::size_t size;

    static bool is_long_enough(std::size_t size) { return size >= 6; }
    Input(const std::uint8_t* data, std::size_t length)
        : topic(data[0]), switches(data[1]), sample(data + 2), size(length - 2)
    {
    }
    bool has(std::uint8_t one) const { return (switches & one) != 0; }
};

} // namespace fuzz

#endif
