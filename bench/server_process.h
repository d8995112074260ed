// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_SERVER_PROCESS_H
#define BENCH_SERVER_PROCESS_H

#include <string>
#include <vector>

#include "support/child_process.h"

namespace bench {

/// Starts a process that answers calls, on the CPU that BENCH_SERVER_CPU names, or where this process runs.
test_support::ChildProcess start_server(std::vector<std::string> command);

/// Has it end in order, so that a profiler that it runs under can write what it has seen.
void end_server(test_support::ChildProcess& server);

} // namespace bench

#endif
