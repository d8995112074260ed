// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_REQUEST_PARSER_H
#define ZORBD_REQUEST_PARSER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "http/http_message.h"

namespace zorbd {

/// Reads one HTTP/1 request after the other from bytes as they come, by Boost.Beast's parser. What could
/// mean two things to two readers is refused: two lengths, a length and chunks, several Host fields.
class RequestParser
{
public:
    /// How long the head of a request may be, and the line before a chunk.
    static constexpr std::size_t max_head = 8192;

    enum class State { head, body, complete, failed };

    RequestParser();
    ~RequestParser();
    RequestParser(const RequestParser&) = delete;
    RequestParser& operator=(const RequestParser&) = delete;

    /// Takes bytes in and says how many; give the rest again, together with what comes after. It stops behind
    /// the head and behind the body.
    std::size_t feed(std::string_view bytes);

    State state() const { return m_state; }
    /// Whether a part of a request has been taken in.
    bool has_begun() const;
    const RequestHead& head() const { return m_head; }

    /// The body; the caller may move it away once it is complete.
    std::string& body() { return m_body; }
    /// A body that gets longer than that fails with 413.
    void limit_body(std::size_t size) { m_max_body = size; }

    /// With State::failed: what to answer.
    unsigned status() const { return m_status; }
    const std::string& cause() const { return m_cause; }

    /// Is ready for the next request.
    void reset();

private:
    class Parser;

    void fail(unsigned status, std::string cause);
    void check_head();

    std::unique_ptr<Parser> m_parser;
    State m_state = State::head;
    RequestHead m_head;
    std::string m_body;
    std::size_t m_head_size = 0; ///< so far
    std::size_t m_max_body = 0;
    unsigned m_status = 400;
    std::string m_cause;
};

} // namespace zorbd

#endif
