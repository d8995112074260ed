// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_LINE_SINK_H
#define ZORBD_LINE_SINK_H

#include <string_view>

namespace zorbd {

/// Where whole lines go.
class LineSink
{
public:
    virtual ~LineSink() = default;

    /// Takes a line, which comes without its end. Any thread may call it, at the same time as others; it does
    /// not wait for whoever reads the lines in the end.
    virtual void take_line(std::string_view line) noexcept = 0;
};

} // namespace zorbd

#endif
