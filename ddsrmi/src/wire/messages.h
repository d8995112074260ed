// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_WIRE_MESSAGES_H
#define DDSRMI_WIRE_MESSAGES_H

#include <cstddef>
#include <cstdint>
#include <random>

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

/// Changes whenever peers of before and after would misunderstand each other.
constexpr std::uint16_t wire_version = 2;

/// What a client sends. Each names its session but `hello`, which has the number that the client gives the
/// meeting.
enum class RequestKind : std::uint16_t {
    hello = 1, ///< begin a session; the answer is `welcome` with the same number
    call = 2,  ///< run an operation
    ping = 3,  ///< are you there? the answer is `pong`
    want = 4,  ///< grant me as many requests as `number` and as many bytes as `operation` say
};

/// What a server sends. Each grants anew.
enum class ReplyKind : std::uint16_t {
    welcome = 1, ///< a session is begun
    result = 2,  ///< of a call
    failed = 3,  ///< the implementation threw; `result` is what it said
    unknown_operation = 4,
    overdue = 5, ///< the call was not run, because its caller does not wait any more
    pong = 6,
    grant = 7,
    forgotten = 8,     ///< there is no such session
    second_choice = 9, ///< like welcome, but a newer server of the same service and instance is about
};

/// The other kinds are said again, sooner or later.
inline bool answers_a_call(ReplyKind kind)
{
    return kind == ReplyKind::result || kind == ReplyKind::failed || kind == ReplyKind::unknown_operation ||
           kind == ReplyKind::overdue;
}

/// How much of what is granted a request takes up: its arguments, and what it costs to keep it.
inline std::uint64_t cost_of(std::size_t arguments)
{
    constexpr std::uint64_t overhead = 256;
    return overhead + arguments;
}

/// Nobody guesses the ids of others' sessions, and none comes twice.
inline std::uint64_t make_session_id()
{
    std::random_device device;
    const std::uint64_t high = device();
    return (high << 32U) | device();
}

} // namespace org::opensplice::DDS_RMI

#endif
