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
    close(open(std::getenv("BLOCKING_FACTORY"), O_RDONLY | O_CLOEXEC));
    return new zeb::api::KX_RPCHandler;
}
