// SPDX-License-Identifier: Apache-2.0
#include "server_process.h"

#include <cstdlib>

namespace bench {

test_support::ChildProcess start_server(std::vector<std::string> command)
{
    if (const char* const cpu = std::getenv("BENCH_SERVER_CPU"))
        command.insert(command.begin(), {"taskset", "--cpu-list", cpu});
    return test_support::ChildProcess(command);
}

void end_server(test_support::ChildProcess& server)
{
    server.close_input();
    server.wait_for_exit();
}

} // namespace bench
