// SPDX-License-Identifier: Apache-2.0
#include "stage.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

std::string operation_name(std::size_t choice)
{
    return target().operations[choice % target().operation_count].name;
}

void give_up(const char* what)
{
    (void)dprintf(STDERR_FILENO, "the stage of the fuzz target: %s\n", what);
    std::abort();
}

Stage::Stage() : m_runtime(rmi::CRuntime::getDefaultRuntime())
{
    stderr = std::fopen("/dev/null", "w"); // the fuzzer writes to the descriptor itself
    std::array<const char*, 2> arguments{"fuzz", "--RMIServiceDiscoveryTimeout=60"};
    if (!m_runtime->start(arguments.size(), arguments.data()))
        give_up("the runtime does not start");
}

} // namespace fuzz
