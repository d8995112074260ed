// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PRIVATE_FILE_H
#define ZORBD_PRIVATE_FILE_H

#include <cstddef>
#include <string>

namespace zorbd {

/// The content of a file with secrets. Throws std::runtime_error that names the file after `what` it is, and
/// the cause: it cannot be read, is longer than `limit`, or everyone has some access to it.
std::string read_private_file(const std::string& file, const std::string& what, std::size_t limit);

/// Replaces a file in one step. A new one is its owner's alone; an old one's mode stays. Throws
/// std::runtime_error.
void replace_private_file(const std::string& file, const std::string& content);

} // namespace zorbd

#endif
