// SPDX-License-Identifier: Apache-2.0
#ifndef STRICT_JSON_JSON_NUMBER_H
#define STRICT_JSON_JSON_NUMBER_H

#include <string>

namespace strict_json {

/// The double nearest to a number in decimal digits, infinite beyond the range of double. Unlike the C
/// library's conversion it does not depend on the process's locale.
double double_of(const std::string& number);

/// A finite double as the shortest JSON text that reads back as the same double; with a point or an exponent,
/// so that it is not taken for an integer.
std::string double_text(double value);

} // namespace strict_json

#endif
