// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_OUTPUT_BUFFER_H
#define TESTS_SUPPORT_OUTPUT_BUFFER_H

#include <cstddef>
#include <optional>
#include <string>

namespace test_support {

/// What a process has written to one stream, and how far its reader has come. Not guarded.
class OutputBuffer
{
public:
    void append(const char* bytes, std::size_t count) { m_text.append(bytes, count); }
    void end() { m_ended = true; }
    bool ended() const { return m_ended; }
    const std::string& text() const { return m_text; }

    /// The next line that contains `text`; the reader then stands behind it. Nothing, and the reader stays
    /// where it was, when there is none yet. A last line without an end counts once the stream has ended.
    std::optional<std::string> take_line(const std::string& text);

private:
    std::string m_text;
    std::string::size_type m_read = 0;
    bool m_ended = false;
};

} // namespace test_support

#endif
