// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_LINE_WRITER_H
#define ZORBD_LINE_WRITER_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "events/line_sink.h"

namespace zorbd {

/// How a stream of lines fares.
struct LineWriterStatus
{
    std::string trouble; ///< why nothing can be written now; empty when all is well
    std::uint64_t written = 0;
    std::uint64_t dropped = 0;
};

/// Writes lines to a descriptor on a thread of its own, so that nobody who hands a line over waits for its
/// reader. As long as the descriptor takes nothing (a reader that stands still, a full disk), a bounded
/// number of bytes is kept and tried again; further lines are dropped and counted.
class LineWriter : public LineSink
{
public:
    /// Kept while the descriptor takes nothing.
    static constexpr std::size_t kept_bytes = 1U << 20U;

    /// `fd` must stay open for as long as the object lives. Throws std::system_error when there can be no
    /// thread.
    explicit LineWriter(int fd);
    /// Writes what can be written within `patience`, and leaves the rest.
    ~LineWriter() override;
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    void take_line(std::string_view line) noexcept override;

    LineWriterStatus status() const;

    /// Waits until all that was taken so far is written, or nothing has gone forward for `patience`.
    void flush() const;

    /// How long the end waits for a reader.
    static constexpr std::chrono::milliseconds patience{500};

private:
    class Queue;

    /// Also its thread's, which can be held in the kernel for longer than the object lives.
    const std::shared_ptr<Queue> m_queue;
};

} // namespace zorbd

#endif
