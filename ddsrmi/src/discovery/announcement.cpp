// SPDX-License-Identifier: Apache-2.0
#include "discovery/announcement.h"

#include <charconv>
#include <string_view>

#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

namespace {

const std::string mark = "ddsrmi ";

// Cuts the first word off; nothing when no blank follows it.
std::optional<std::string_view> cut_word(std::string_view& text)
{
    const auto blank = text.find(' ');
    if (blank == std::string_view::npos)
        return std::nullopt;
    const auto word = text.substr(0, blank);
    text.remove_prefix(blank + 1);
    return word;
}

template <class Number>
std::optional<Number> cut_number(std::string_view& text)
{
    const auto word = cut_word(text);
    Number number{};
    if (!word)
        return std::nullopt;
    const auto [end, error] = std::from_chars(word->data(), word->data() + word->size(), number);
    if (error != std::errc() || end != word->data() + word->size())
        return std::nullopt;
    return number;
}

} // namespace

// The service's name comes last, because it may be any text.
std::string Announcement::to_text() const
{
    return mark + std::to_string(wire_version) + ' ' + std::to_string(epoch) + ' ' +
           std::to_string(instance) + ' ' + server_class + ' ' + service;
}

std::optional<unsigned> Announcement::version_of(const std::string& text)
{
    if (text.compare(0, mark.size(), mark) != 0)
        return std::nullopt;
    std::string_view rest = text;
    rest.remove_prefix(mark.size());
    return cut_number<unsigned>(rest);
}

std::optional<Announcement> Announcement::parse(const std::string& text)
{
    if (version_of(text) != wire_version)
        return std::nullopt;
    std::string_view rest = text;
    rest.remove_prefix(mark.size());
    cut_word(rest);
    const auto epoch = cut_number<std::uint64_t>(rest);
    const auto instance = cut_number<DDS::Long>(rest);
    const auto server_class = cut_word(rest);
    if (!epoch || !instance || !server_class)
        return std::nullopt;
    return Announcement{*epoch, *instance, std::string(*server_class), std::string(rest)};
}

} // namespace org::opensplice::DDS_RMI
