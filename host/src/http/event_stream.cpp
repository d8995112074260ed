// SPDX-License-Identifier: Apache-2.0
#include "http/event_stream.h"

#include <microhttpd.h>

#include <sys/socket.h>

#include <charconv>
#include <memory>
#include <new>
#include <utility>

#include "http/mhd_response.h"

namespace zorbd {
namespace {

/// What is read from a listener at a time.
constexpr std::size_t block_size = 8192;
/// What the kernel keeps for a listener that does not read.
constexpr int socket_buffer = 65536;

/// A client that takes events, for as long as its response is being sent.
struct Stream
{
    MHD_Connection& connection;
    IoThreads& threads;
    ConnectionRegistry& connections;
    ConnectionRegistry::Connection& registered;
    std::unique_ptr<EventFeed::Listener> listener;
};

/// Called by libmicrohttpd when the client has taken what it was sent before.
ssize_t read_stream(void* closure, std::uint64_t /*position*/, char* buffer, std::size_t size) noexcept
{
    try {
        auto& stream = *static_cast<Stream*>(closure);
        stream.connections.enter(stream.registered, ConnectionPhase::listening);
        switch (stream.listener->read(buffer, size)) {
        case EventFeed::Listener::State::text:
            return static_cast<ssize_t>(size);
        case EventFeed::Listener::State::ended:
            return MHD_CONTENT_READER_END_OF_STREAM;
        case EventFeed::Listener::State::nothing_yet:
            break;
        }
        MHD_suspend_connection(&stream.connection);
        stream.threads.sleeps();
        if (!stream.listener->sleep())
            resume(stream.threads, stream.connection);
        return 0;
    } catch (...) {
        return MHD_CONTENT_READER_END_WITH_ERROR; // no memory: the client may come again
    }
}

void end_stream(void* closure) noexcept
{
    const std::unique_ptr<Stream> ended(static_cast<Stream*>(closure));
}

void limit_socket_buffer(MHD_Connection& connection)
{
    const int socket = MHD_get_connection_info(&connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
    setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &socket_buffer, sizeof socket_buffer);
}

void queue(MHD_Connection& connection, const Response& response)
{
    MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CONTENT_TYPE, "text/event-stream");
    MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
    queue_response(connection, MHD_HTTP_OK, response);
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

std::variant<std::optional<std::uint64_t>, Refusal> resume_point(MHD_Connection& connection)
{
    const char* text = MHD_lookup_connection_value(&connection, MHD_HEADER_KIND, "Last-Event-ID");
    if (text == nullptr)
        text = MHD_lookup_connection_value(&connection, MHD_GET_ARGUMENT_KIND, "last_event_id");
    if (text == nullptr || *text == '\0')
        return std::optional<std::uint64_t>();
    const std::optional<std::uint64_t> id = parse_event_id(text);
    if (!id)
        return Refusal{400, "Last-Event-ID must be the id of an event: a whole number", {}};
    return id;
}

std::optional<Refusal> answer_with_events(MHD_Connection& connection, EventFeed& feed,
                                          std::optional<std::uint64_t> after, IoThreads& threads,
                                          ConnectionRegistry& connections,
                                          ConnectionRegistry::Connection& registered)
{
    auto listener = feed.listen(after, [&connection, &threads] { resume(threads, connection); });
    if (listener == nullptr)
        return Refusal{503, "too many listeners take events already (--max-listeners)", {}};
    auto stream =
        std::make_unique<Stream>(Stream{connection, threads, connections, registered, std::move(listener)});
    const Response response(MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, block_size, &read_stream,
                                                              stream.get(), &end_stream));
    if (response == nullptr)
        throw std::bad_alloc();
    static_cast<void>(stream.release()); // now the response's
    limit_socket_buffer(connection);
    connections.enter(registered, ConnectionPhase::listening);
    queue(connection, response);
    return std::nullopt;
}

void answer_with_event_head(MHD_Connection& connection)
{
    queue(connection, response_of({}));
}

} // namespace zorbd
