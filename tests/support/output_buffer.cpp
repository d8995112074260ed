// SPDX-License-Identifier: Apache-2.0
#include "output_buffer.h"

namespace test_support {

std::optional<std::string> OutputBuffer::take_line(const std::string& text)
{
    std::string::size_type start = m_read;
    while (start < m_text.size()) {
        std::string::size_type end = m_text.find('\n', start);
        if (end == std::string::npos) {
            if (!m_ended) {
                return std::nullopt;
            }
            end = m_text.size();
        }
        std::string line = m_text.substr(start, end - start);
        start = end + 1;
        if (line.find(text) != std::string::npos) {
            m_read = start;
            return line;
        }
    }
    return std::nullopt;
}

} // namespace test_support
