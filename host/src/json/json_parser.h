// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_JSON_PARSER_H
#define ZORBD_JSON_PARSER_H

#include <string>

#include "json/json_text_check.h"
#include "json/json_value.h"

namespace zorbd {

/// Parses exactly one JSON text, nested at most `max_depth` deep, in strict RFC 8259 form. Throws
/// JsonSyntaxError, and std::bad_alloc.
JsonValue parse_json(const std::string& text, int max_depth);

} // namespace zorbd

#endif
