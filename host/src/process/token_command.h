// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TOKEN_COMMAND_H
#define ZORBD_TOKEN_COMMAND_H

#include <iosfwd>

namespace zorbd {

/// `zorbd token ...`: makes, lists and removes tokens in a token file. `argv[0]` is "token". What is asked
/// for goes to `output`, mistakes to standard error; gives the exit code.
int run_token_command(int argc, const char* const* argv, std::ostream& output);

} // namespace zorbd

#endif
