// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_RESPONSE_STREAM_H
#define ZORBD_RESPONSE_STREAM_H

#include <cstddef>

namespace zorbd {

/// The body of an answer that comes bit by bit and has no end in sight. It belongs to its connection's I/O
/// thread.
class ResponseStream
{
public:
    /// What reading has come to.
    enum class State { text, nothing_yet, ended };

    virtual ~ResponseStream() = default;

    /// Fills `buffer` with what comes next and sets `size` to its length.
    virtual State read(char* buffer, std::size_t& size) = 0;
    /// After nothing_yet: asks to be woken. False when there is something to read already.
    virtual bool sleep() = 0;
};

} // namespace zorbd

#endif
