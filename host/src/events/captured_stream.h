// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CAPTURED_STREAM_H
#define ZORBD_CAPTURED_STREAM_H

#include <memory>
#include <ostream>

#include "events/line_streambuf.h"

namespace zorbd {

/// Turns what is written to a stream, by any thread, into whole lines for a sink, for as long as the object
/// lives. No other thread may be writing to the stream when it is made or destroyed.
class CapturedStream
{
public:
    CapturedStream(std::ostream& stream, std::shared_ptr<LineSink> sink)
        : m_lines(std::move(sink)), m_stream(stream), m_own(stream.rdbuf(&m_lines))
    {
    }
    ~CapturedStream() { m_stream.rdbuf(m_own); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

private:
    LineStreambuf m_lines;
    std::ostream& m_stream;
    std::streambuf* const m_own;
};

} // namespace zorbd

#endif
