// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CONSOLE_PAGE_H
#define ZORBD_CONSOLE_PAGE_H

#include "console/console_files.h"

struct MHD_Connection;

namespace zorbd {

/// Answers with a file of the console.
void answer_with_console(MHD_Connection& connection, const ConsoleFile& file);

} // namespace zorbd

#endif
