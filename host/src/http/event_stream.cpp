// SPDX-License-Identifier: Apache-2.0
#include "http/event_stream.h"

#include <charconv>
#include <memory>
#include <utility>

namespace zorbd {
namespace {

/// What a listener reads, as the body of an answer.
class EventStream : public ResponseStream
{
public:
    explicit EventStream(std::unique_ptr<EventFeed::Listener> listener) : m_listener(std::move(listener)) {}

    State read(char* buffer, std::size_t& size) override
    {
        switch (m_listener->read(buffer, size)) {
        case EventFeed::Listener::State::text:
            return State::text;
        case EventFeed::Listener::State::ended:
            return State::ended;
        default:
            return State::nothing_yet;
        }
    }
    bool sleep() override { return m_listener->sleep(); }

private:
    const std::unique_ptr<EventFeed::Listener> m_listener;
};

/// The value of a parameter of a query; nothing when it is not there.
std::optional<std::string_view> parameter(std::string_view query, std::string_view name)
{
    while (!query.empty()) {
        const std::string_view one = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(one.size() + 1, query.size()));
        const std::size_t equals = one.find('=');
        if (one.substr(0, equals) == name)
            return equals == std::string_view::npos ? "" : one.substr(equals + 1);
    }
    return std::nullopt;
}

/// What names the event after which a client wants to go on; empty when it names none.
std::string_view resume_text(const RequestHead& head)
{
    if (const auto field = head.field("Last-Event-ID"))
        return *field;
    return parameter(head.query, "last_event_id").value_or("");
}

} // namespace

std::optional<std::uint64_t> parse_event_id(std::string_view text)
{
    std::uint64_t id = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), id);
    if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size())
        return std::nullopt;
    return id;
}

OpenStream event_stream(EventFeed& feed)
{
    const auto open = [&feed](const RequestHead& head, std::function<void()> wake) -> OpenedStream {
        const std::string_view after = resume_text(head);
        const auto id = parse_event_id(after);
        if (!after.empty() && !id)
            return Refusal{400, "Last-Event-ID must be the id of an event: a whole number"};
        auto listener = feed.listen(id, std::move(wake));
        if (listener == nullptr)
            return Refusal{503, "too many listeners take events already (--max-listeners)"};
        return std::make_unique<EventStream>(std::move(listener));
    };
    return {"text/event-stream", open};
}

} // namespace zorbd
