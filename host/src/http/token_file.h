// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TOKEN_FILE_H
#define ZORBD_TOKEN_FILE_H

#include <string>
#include <vector>

#include "http/token.h"

namespace zorbd {

/// A token file is one of two:
/// - a single line with a secret, which may do everything;
/// - a line for each token, as `zorbd token add` writes it: its name, the hash of its secret, the methods
/// that
///   it may call, and perhaps its last day: "NAME sha256:HEX methods=PATTERN,PATTERN until=YYYY-MM-DD".
///   Empty lines and lines that begin with # say nothing.
///
/// Throws std::runtime_error, naming the file and the line, when it cannot be read, is open to everyone, or
/// is neither.
std::vector<Token> read_token_file(const std::string& file);

/// Replaces the file in one step, with mode 0600 or the mode that it has. Throws std::runtime_error.
void write_token_file(const std::string& file, const std::vector<Token>& tokens);

/// Throws std::invalid_argument, with what is wrong, when it is no name or pattern for a token.
void require_token_name(const std::string& name);
std::vector<std::string> parse_patterns(const std::string& text);

/// The end of a day, in UTC, and the day of such an end. Throws std::invalid_argument.
std::time_t parse_last_day(const std::string& text);
std::string last_day_text(std::time_t end);

} // namespace zorbd

#endif
