// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_OPEN_FILES_H
#define ZORBD_OPEN_FILES_H

#include <cstddef>

namespace zorbd {

/// Makes sure that the process may have that many files open, raising its soft limit where needed. Throws
/// std::runtime_error when the hard limit does not allow it.
void allow_open_files(std::size_t count);

} // namespace zorbd

#endif
