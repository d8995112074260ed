// SPDX-License-Identifier: Apache-2.0
#include "process/open_files.h"

#include <sys/resource.h>

#include <stdexcept>
#include <string>

namespace zorbd {

void allow_open_files(std::size_t count)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur >= count)
        return;
    limit.rlim_cur = count;
    if (limit.rlim_cur > limit.rlim_max || setrlimit(RLIMIT_NOFILE, &limit) != 0)
        throw std::runtime_error("the process may not have " + std::to_string(count) +
                                 " files open; lower --max-connections or raise the limit (ulimit -n)");
}

} // namespace zorbd
