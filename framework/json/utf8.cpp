// SPDX-License-Identifier: Apache-2.0
#include "json/utf8.h"

#include <cstdint>
#include <cstring>

namespace strict_json {
namespace {

struct Form
{
    unsigned char first_low;
    unsigned char first_high;
    unsigned char second_low;
    unsigned char second_high;
    std::size_t length;
};

// The well-formed sequences, as the Unicode standard tables them (its table 3-7).
constexpr Form forms[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool is_within(char c, unsigned char low, unsigned char high)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= low && byte <= high;
}

bool has_form(std::string_view text, const Form& form)
{
    if (!is_within(text[0], form.first_low, form.first_high) || text.size() < form.length ||
        !is_within(text[1], form.second_low, form.second_high))
        return false;
    for (std::size_t i = 2; i < form.length; ++i)
        if (!is_within(text[i], 0x80, 0xBF))
            return false;
    return true;
}

/// The length of the sequence that `text` begins with; 0 when it is not well-formed.
std::size_t sequence_length(std::string_view text)
{
    if (is_within(text[0], 0x00, 0x7F))
        return 1;
    for (const Form& form : forms)
        if (has_form(text, form))
            return form.length;
    return 0;
}

constexpr std::size_t ascii_run = 8;

/// Whether the next so many bytes are ASCII, as they are in most texts.
bool begins_with_ascii(std::string_view text)
{
    constexpr std::uint64_t high_bits = 0x8080808080808080U;
    std::uint64_t bytes = 0;
    if (text.size() < ascii_run)
        return false;
    std::memcpy(&bytes, text.data(), ascii_run);
    return (bytes & high_bits) == 0;
}

} // namespace

std::optional<std::size_t> find_invalid_utf8(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        if (begins_with_ascii(text.substr(at))) {
            at += ascii_run;
            continue;
        }
        const std::size_t length = sequence_length(text.substr(at));
        if (length == 0)
            return at;
        at += length;
    }
    return std::nullopt;
}

} // namespace strict_json
