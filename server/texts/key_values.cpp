// SPDX-License-Identifier: Apache-2.0
#include "texts/key_values.h"

#include <algorithm>

#include "contract/network_limits.h"
#include "contract/reply.h"
#include "texts/text_split.h"

namespace varnel {

namespace {

// The functions of <cctype> depend on the locale.
bool is_letter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool is_key_character(char character)
{
    return is_letter(character) || (character >= '0' && character <= '9') || character == '_' ||
           character == '-' || character == '.';
}

bool is_value_character(char character)
{
    return character >= ' ' && character <= '~' && character != '=';
}

bool is_key(std::string_view text)
{
    return !text.empty() && text.size() <= limits::key_length && is_letter(text.front()) &&
           std::all_of(text.begin(), text.end(), is_key_character);
}

bool is_value(std::string_view text)
{
    return !text.empty() && text.size() <= limits::value_length &&
           std::all_of(text.begin(), text.end(), is_value_character);
}

void require(bool well_formed)
{
    if (!well_formed)
        throw Refusal(Failure::malformed_text);
}

} // namespace

KeyValues KeyValues::parse(std::string_view text)
{
    if (text.size() > limits::key_values_length)
        throw Refusal(Failure::text_too_long);
    KeyValues result;
    for (const std::string_view part : split(text, ",;"))
        if (const std::string_view pair = trim(part); !pair.empty())
            result.add(pair);
    require(result.size() > 0);
    return result;
}

std::string KeyValues::text() const
{
    std::string result;
    for (const auto& [key, value] : m_pairs)
        result.append(result.empty() ? "" : "; ").append(key).append("=").append(value);
    return result;
}

bool KeyValues::has_key(std::string_view key) const
{
    return std::any_of(m_pairs.begin(), m_pairs.end(), [key](const auto& pair) { return pair.first == key; });
}

void KeyValues::add(std::string_view pair)
{
    const std::size_t sign = pair.find('=');
    require(sign != std::string_view::npos && m_pairs.size() < limits::pairs);
    const std::string_view key = trim(pair.substr(0, sign));
    const std::string_view value = trim(pair.substr(sign + 1));
    require(is_key(key) && is_value(value) && !has_key(key));
    m_pairs.emplace_back(key, value);
}

} // namespace varnel
