// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_STANDARD_STREAMS_H
#define ZORBD_STANDARD_STREAMS_H

#include <memory>
#include <string>
#include <vector>

#include "events/captured_stream.h"
#include "events/event_feed.h"
#include "events/line_writer.h"
#include "events/metrics.h"
#include "plugins/health_report.h"

namespace zorbd {

/// The process's standard output and standard error, of which the host is the only writer: what anybody
/// writes to std::cout, std::cerr and std::clog leaves the process in whole lines, and no reader who stands
/// still holds up who writes. The lines of std::cout, which are the plug-ins', are events, too.
class StandardStreams
{
public:
    /// To be made before other threads run and before files are opened. `feed` must outlive the object.
    /// `only_plugin` is the file of the one plug-in that there is; empty when there are several. Throws
    /// std::system_error.
    StandardStreams(EventFeed& feed, std::string only_plugin);
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    std::vector<StreamHealth> health() const;
    void write(MetricsText& text) const;

    /// Where lines to standard output go that are no events.
    const std::shared_ptr<LineWriter>& output() const { return m_output; }

    /// Waits until all is written that was written to the streams, for as long as their readers read.
    void flush() const;

private:
    std::shared_ptr<LineWriter> m_errors;
    std::shared_ptr<LineWriter> m_output;
    CapturedStream m_cerr;
    CapturedStream m_clog;
    CapturedStream m_cout;
};

/// Keeps the numbers of standard streams that were closed when the process was started, so that no other file
/// gets one and is written to in error.
void hold_closed_standard_streams();

} // namespace zorbd

#endif
