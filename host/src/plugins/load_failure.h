// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_LOAD_FAILURE_H
#define ZORBD_LOAD_FAILURE_H

#include <string>

namespace zorbd {

/// What the dynamic linker's message `said` about a plug-in means for its author, and what to do: which
/// symbol is missing and where it probably comes from, or which library was not found. Any other message is
/// given as it is.
std::string explain_load_failure(const std::string& file, const std::string& said);

} // namespace zorbd

#endif
