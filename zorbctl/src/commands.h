// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_COMMANDS_H
#define ZORBCTL_COMMANDS_H

#include "client.h"
#include "options.h"

namespace zorbctl {

/// Each runs one command, writes what it has found to standard output and gives the exit code. Each throws
/// Failure.
int list_methods(Client& client, const Options& options);
int describe_method(Client& client, const Options& options);
int call_method(Client& client, const Options& options);
int watch_events(Client& client, const Options& options);
int tell_health(Client& client, const Options& options);

/// Writes the words that can follow those of a command line, for the shell's completion.
int complete_words(Client& client, const Options& options);

} // namespace zorbctl

#endif
