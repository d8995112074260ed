// SPDX-License-Identifier: Apache-2.0
// A plug-in whose factory waits until somebody opens the FIFO that BLOCKING_FACTORY names and closes it
// again.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "zeb/api/KX_RPCHandler.h"

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    std::cout << "factory blocked" << std::endl;
    if (const char* fifo = std::getenv("BLOCKING_FACTORY"))
        close(open(fifo, O_RDONLY | O_CLOEXEC));
    return new zeb::api::KX_RPCHandler;
}
