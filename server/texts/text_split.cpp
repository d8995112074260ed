// SPDX-License-Identifier: Apache-2.0
#include "texts/text_split.h"

#include <algorithm>
#include <cstddef>

namespace varnel {

std::vector<std::string_view> split(std::string_view text, std::string_view separators)
{
    std::vector<std::string_view> parts;
    std::size_t begin = text.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(separators, end);
    }
    return parts;
}

std::string_view trim(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    const std::size_t end = text.find_last_not_of(blanks) + 1;
    return text.substr(begin, end > begin ? end - begin : 0);
}

} // namespace varnel
