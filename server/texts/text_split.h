// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_TEXTS_TEXT_SPLIT_H
#define SERVER_TEXTS_TEXT_SPLIT_H

#include <string_view>
#include <vector>

namespace varnel {

constexpr std::string_view blanks = " \t\r\n";

/// The parts of `text` between runs of characters of `separators`; none is empty. They point into `text`.
std::vector<std::string_view> split(std::string_view text, std::string_view separators);

/// `text` without the blanks at its ends.
std::string_view trim(std::string_view text);

} // namespace varnel

#endif
