// SPDX-License-Identifier: Apache-2.0
// What plug-ins write, in any pieces, and where listeners begin: what a listener reads is always a stream of
// whole events, each a line of JSON, whose ids grow by one unless it is told of a gap.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "events/event_feed.h"
#include "events/line_streambuf.h"
#include "http/event_stream.h"
#include "json/json_reader.h"

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

class FedLines : public zorbd::LineSink
{
public:
    explicit FedLines(zorbd::EventFeed& feed) : m_feed(feed) {}
    void take_line(std::string_view line) noexcept override { m_feed.add_line("plugin.so", line); }

private:
    zorbd::EventFeed& m_feed;
};

/// Writes the input in pieces whose lengths it tells itself.
void write_in_pieces(std::ostream& stream, std::string_view input)
{
    while (!input.empty()) {
        const std::size_t length = static_cast<unsigned char>(input.front()) % 37U;
        input.remove_prefix(1);
        const std::string_view piece = input.substr(0, length);
        stream << piece;
        input.remove_prefix(piece.size());
    }
    stream << std::endl;
}

std::string read_all(zorbd::EventFeed::Listener& listener, std::size_t block)
{
    std::string text;
    std::string buffer(block, '\0');
    for (std::size_t size = block;
         listener.read(buffer.data(), size) == zorbd::EventFeed::Listener::State::text; size = block)
        text.append(buffer, 0, size);
    return text;
}

std::string field(const std::string& block, const std::string& name)
{
    const std::size_t begin = ('\n' + block).find('\n' + name + ": ");
    if (begin == std::string::npos)
        return {};
    const std::size_t value = begin + name.size() + 2;
    return block.substr(value, block.find('\n', value) - value);
}

void check_stream(std::string_view text)
{
    std::uint64_t last = 0;
    while (!text.empty()) {
        const std::size_t end = text.find("\n\n");
        require(end != std::string_view::npos);
        const std::string block(text.substr(0, end + 1));
        text.remove_prefix(end + 2);
        const std::string data = field(block, "data");
        if (!data.empty())
            strict_json::parse_json(data, 8);
        if (field(block, "event") == "gap")
            last = 0;
        if (const auto id = zorbd::parse_event_id(field(block, "id"))) {
            require(last == 0 || *id == last + 1);
            last = *id;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static zorbd::EventFeed feed({16384, 4, std::chrono::hours(1)});
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view id = input.substr(0, input.find('\n'));
    const auto now = feed.listen(std::nullopt, [] {});
    const auto resumed = feed.listen(zorbd::parse_event_id(id), [] {});
    {
        zorbd::LineStreambuf buffer(std::make_shared<FedLines>(feed));
        std::ostream stream(&buffer);
        write_in_pieces(stream, input);
    }
    check_stream(read_all(*now, 1 + size % 700));
    check_stream(read_all(*resumed, 8192));
    return 0;
}
