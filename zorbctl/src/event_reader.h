// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_EVENT_READER_H
#define ZORBCTL_EVENT_READER_H

#include <functional>
#include <string>
#include <string_view>

#include "client.h"

namespace zorbctl {

struct Event
{
    std::string id;
    std::string kind; ///< "line", "call" or "gap"; empty for what only tells where the stream begins
    Json data;
};

/// Takes the bytes of a stream of Server-Sent Events and gives its events.
class EventReader
{
public:
    /// `take` returns whether it wants more.
    explicit EventReader(std::function<bool(const Event&)> take) : m_take(std::move(take)) {}

    /// Whether more is wanted.
    bool read(std::string_view bytes);

private:
    const std::function<bool(const Event&)> m_take;
    std::string m_rest;
};

} // namespace zorbctl

#endif
