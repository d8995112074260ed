// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_LINE_STREAMBUF_H
#define ZORBD_LINE_STREAMBUF_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <streambuf>
#include <string_view>

#include "events/line_sink.h"

namespace zorbd {

/// The buffer of a stream that many threads write to at the same time. What each thread writes is kept apart
/// until it makes a whole line, however many insertions that takes; the line then goes to the sink in one
/// piece. A flush does nothing: a line that is not whole yet waits for its end.
///
/// A thread that ends leaves what it has written as its last line. Writing never fails, so the stream stays
/// good; without memory a piece is lost.
class LineStreambuf : public std::streambuf
{
public:
    /// A longer line is handed over in parts of this many bytes.
    static constexpr std::size_t longest_line = 65536;

    explicit LineStreambuf(std::shared_ptr<LineSink> sink);
    ~LineStreambuf() override;
    LineStreambuf(const LineStreambuf&) = delete;
    LineStreambuf& operator=(const LineStreambuf&) = delete;

    /// Hands over what the calling thread has written since its last line.
    void end_line() noexcept;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override { return 0; }

private:
    void take(std::string_view text) noexcept;

    const std::uint64_t m_number; ///< no two buffers of the process have the same
    const std::shared_ptr<LineSink> m_sink;
};

} // namespace zorbd

#endif
