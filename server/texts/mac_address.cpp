// SPDX-License-Identifier: Apache-2.0
#include "texts/mac_address.h"

#include <cstddef>

namespace varnel {

namespace {

constexpr std::size_t octets = 6;
constexpr std::uint64_t broadcast = 0xFFFF'FFFF'FFFF;

std::optional<unsigned> digit_value(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return std::nullopt;
}

bool has_separators(std::string_view text)
{
    return text.size() == 3 * octets - 1 && (text[2] == ':' || text[2] == '-');
}

bool has_known_shape(std::string_view text)
{
    return text.size() == 2 * octets || has_separators(text);
}

/// How far apart the octets of a text of known shape begin.
std::size_t octet_distance(std::string_view text)
{
    return has_separators(text) ? 3 : 2;
}

bool separators_agree(std::string_view text)
{
    for (std::size_t i = 2; has_separators(text) && i < text.size(); i += 3)
        if (text[i] != text[2])
            return false;
    return true;
}

std::optional<std::uint64_t> read_octets(std::string_view text)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < text.size(); i += octet_distance(text)) {
        const std::optional<unsigned> high = digit_value(text[i]);
        const std::optional<unsigned> low = digit_value(text[i + 1]);
        if (!high || !low)
            return std::nullopt;
        bits = bits << 8 | *high << 4 | *low;
    }
    return bits;
}

} // namespace

std::optional<MacAddress> MacAddress::parse(std::string_view text)
{
    if (!has_known_shape(text) || !separators_agree(text))
        return std::nullopt;
    const std::optional<std::uint64_t> bits = read_octets(text);
    if (!bits || *bits == 0 || *bits == broadcast)
        return std::nullopt;
    return MacAddress(*bits);
}

std::string MacAddress::text() const
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (int shift = 44; shift >= 0; shift -= 4) {
        result += digits[m_bits >> shift & 0xF];
        if (shift % 8 == 0 && shift != 0)
            result += ':';
    }
    return result;
}

} // namespace varnel
