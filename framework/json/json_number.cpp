// SPDX-License-Identifier: Apache-2.0
#include "json/json_number.h"

#include <locale.h>
#include <stdlib.h>

#include <charconv>

namespace strict_json {

double double_of(const std::string& number)
{
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(number.c_str(), nullptr, c_locale);
}

std::string double_text(double value)
{
    char buffer[32]; // a double takes at most 24 characters
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
    std::string text(buffer, written.ptr);
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

} // namespace strict_json
