// SPDX-License-Identifier: Apache-2.0
#include "network/clock.h"

namespace varnel {

void SteadyClock::wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                       std::optional<TimePoint> deadline)
{
    if (deadline)
        changed.wait_until(lock, *deadline);
    else
        changed.wait(lock);
}

} // namespace varnel
