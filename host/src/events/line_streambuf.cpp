// SPDX-License-Identifier: Apache-2.0
#include "events/line_streambuf.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>
#include <vector>

namespace zorbd {
namespace {

std::atomic<std::uint64_t> buffers_made{0};

/// What one thread has written to one stream since its last line.
struct Piece
{
    std::uint64_t stream;
    std::weak_ptr<LineSink> sink;
    std::string text;
};

/// Whether the thread's pieces are gone already; what else ends with the thread may still write.
thread_local bool pieces_are_gone = false;

/// The pieces of one thread.
class Pieces
{
public:
    Pieces() = default;
    ~Pieces()
    {
        pieces_are_gone = true;
        for (const Piece& piece : m_pieces)
            hand_over(piece);
    }
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    std::string& of(std::uint64_t stream, const std::shared_ptr<LineSink>& sink)
    {
        for (Piece& piece : m_pieces)
            if (piece.stream == stream)
                return piece.text;
        m_pieces.push_back({stream, sink, {}});
        return m_pieces.back().text;
    }

    void forget(std::uint64_t stream)
    {
        m_pieces.erase(std::remove_if(m_pieces.begin(), m_pieces.end(),
                                      [stream](const Piece& piece) { return piece.stream == stream; }),
                       m_pieces.end());
    }

private:
    static void hand_over(const Piece& piece)
    {
        const auto sink = piece.sink.lock();
        if (sink != nullptr && !piece.text.empty())
            sink->take_line(piece.text);
    }

    std::vector<Piece> m_pieces; ///< as many as there are streams: two or three
};

thread_local Pieces pieces;

/// Adds `text` to `piece` and hands over the lines that are whole, and parts of one that is too long.
void append(std::string& piece, std::string_view text, LineSink& sink)
{
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        if (piece.empty()) {
            sink.take_line(text.substr(0, end));
        } else {
            piece.append(text.substr(0, end));
            sink.take_line(std::exchange(piece, {}));
        }
        text.remove_prefix(end + 1);
    }
    piece.append(text);
    while (piece.size() >= LineStreambuf::longest_line) {
        sink.take_line(std::string_view(piece).substr(0, LineStreambuf::longest_line));
        piece.erase(0, LineStreambuf::longest_line);
    }
}

} // namespace

LineStreambuf::LineStreambuf(std::shared_ptr<LineSink> sink)
    : m_number(++buffers_made), m_sink(std::move(sink))
{
}

LineStreambuf::~LineStreambuf()
{
    end_line();
    if (!pieces_are_gone)
        pieces.forget(m_number);
}

void LineStreambuf::end_line() noexcept
{
    try {
        if (pieces_are_gone)
            return;
        const std::string rest = std::exchange(pieces.of(m_number, m_sink), {});
        if (!rest.empty())
            m_sink->take_line(rest);
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no memory for the piece either
    }
}

LineStreambuf::int_type LineStreambuf::overflow(int_type character)
{
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        const char written = traits_type::to_char_type(character);
        take({&written, 1});
    }
    return traits_type::not_eof(character);
}

std::streamsize LineStreambuf::xsputn(const char* text, std::streamsize size)
{
    take({text, static_cast<std::size_t>(size)});
    return size;
}

void LineStreambuf::take(std::string_view text) noexcept
{
    try {
        if (pieces_are_gone) {
            std::string last;
            append(last, text, *m_sink);
            if (!last.empty())
                m_sink->take_line(last);
        } else {
            append(pieces.of(m_number, m_sink), text, *m_sink);
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): without memory the piece is lost, the call goes on
    }
}

} // namespace zorbd
