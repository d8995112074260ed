// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CALL_LOG_H
#define ZORBD_CALL_LOG_H

#include <chrono>
#include <memory>
#include <string_view>

#include "events/event_feed.h"
#include "events/line_sink.h"
#include "events/metrics.h"

namespace zorbd {

/// A call that has ended.
struct EndedCall
{
    std::string_view peer;   ///< the address that it came from
    std::string_view token;  ///< the name of the caller's token; empty when it has none
    std::string_view method; ///< empty when nobody offers it
    std::string_view id;     ///< JSON text; empty for a notification
    std::chrono::nanoseconds duration{};
    int code = 0; ///< of the error; 0 when there is none
};

/// Where ended calls are told of: in the counters always, to listeners while there are some, and in the
/// access log if there is one.
class CallLog
{
public:
    /// `metrics` and `feed` must outlive it; `access` takes the access log's lines and may be null.
    CallLog(Metrics& metrics, EventFeed& feed, std::shared_ptr<LineSink> access);

    /// Whether EndedCall::peer is looked at.
    bool needs_peer() const { return m_access != nullptr; }

    /// Any thread.
    void add(const EndedCall& call) noexcept;

private:
    Metrics& m_metrics;
    EventFeed& m_feed;
    const std::shared_ptr<LineSink> m_access;
};

} // namespace zorbd

#endif
