// SPDX-License-Identifier: Apache-2.0
#include "captured_output.h"

#include <iostream>

#include "recording.h"

namespace conformance {

CapturedOutput::CapturedOutput() : m_previous(std::cout.rdbuf(this)) {}

CapturedOutput::~CapturedOutput()
{
    std::cout.rdbuf(m_previous);
}

std::string CapturedOutput::text() const
{
    const std::lock_guard lock(m_mutex);
    return m_text;
}

CapturedOutput::int_type CapturedOutput::overflow(int_type character)
{
    const char single = traits_type::to_char_type(character);
    append(&single, 1);
    return character;
}

std::streamsize CapturedOutput::xsputn(const char* characters, std::streamsize count)
{
    append(characters, static_cast<std::size_t>(count));
    return count;
}

int CapturedOutput::sync()
{
    const Unobserved unobserved;
    const std::lock_guard lock(m_mutex);
    record("output", m_pending);
    m_text += m_pending;
    m_pending.clear();
    return 0;
}

void CapturedOutput::append(const char* characters, std::size_t count)
{
    const Unobserved unobserved;
    const std::lock_guard lock(m_mutex);
    m_pending.append(characters, count);
}

} // namespace conformance
