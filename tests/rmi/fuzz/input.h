// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_INPUT_H
#define TESTS_RMI_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// One input: a byte that chooses an operation, a byte of switches, and a serialized message. The switches
/// put right what chance would never get right; make_seeds.py knows them too.
struct Input
{
    /// The session that the two sides have, in the right wire version.
    static constexpr std::uint8_t own_session = 1;
    /// Requests: the next call in the session. Replies: the result of a call that is outstanding.
    static constexpr std::uint8_t next = 2;
    /// Requests: the operation that is chosen. Replies: an answer to the last hello.
    static constexpr std::uint8_t chosen = 4;

    std::uint8_t operation;
    std::uint8_t switches;
    const std::uint8_t* message;
    std::size_t size;

    static bool is_long_enough(std::size_t size) { return size >= 6; }
    Input(const std::uint8_t* data, std::size_t length)
        : operation(data[0]), switches(data[1]), message(data + 2), size(length - 2)
    {
    }
    bool has(std::uint8_t one) const { return (switches & one) != 0; }
};

} // namespace fuzz

#endif
