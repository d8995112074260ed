// SPDX-License-Identifier: Apache-2.0
#include "process/call_log.h"

#include <cstddef>

namespace varnel {

namespace {

constexpr std::size_t shown_length = 160;

std::string hexadecimal(unsigned char byte)
{
    constexpr std::string_view digits = "0123456789abcdef";
    return {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
}

std::string escaped(char character)
{
    if (character == '"' || character == '\\')
        return {'\\', character};
    if (character < ' ' || character > '~')
        return hexadecimal(static_cast<unsigned char>(character));
    return {character};
}

std::string joined(const std::vector<std::string>& arguments)
{
    std::string result;
    for (const std::string& argument : arguments)
        result.append(result.empty() ? "" : ", ").append(argument);
    return result;
}

std::string result_text(const Reply& reply)
{
    const std::string name = failure_name(reply.value);
    return std::to_string(reply.value) + (name.empty() ? "" : " (" + name + ")") +
           (reply.detail.empty() ? "" : " " + quoted_text(reply.detail));
}

} // namespace

std::string quoted_text(std::string_view text)
{
    std::string result = "\"";
    for (const char character : text.substr(0, shown_length))
        result += escaped(character);
    result += '"';
    if (text.size() > shown_length)
        result += "... (" + std::to_string(text.size()) + " bytes)";
    return result;
}

void CallLog::call(const std::string& operation, const std::vector<std::string>& arguments,
                   const Reply& reply)
{
    note(operation + "(" + joined(arguments) + ") = " + result_text(reply));
}

void CallLog::note(const std::string& text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_out << text + "\n" << std::flush;
}

} // namespace varnel
