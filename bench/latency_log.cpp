// SPDX-License-Identifier: Apache-2.0
#include "latency_log.h"

#include <algorithm>

namespace bench {

void ReplyGate::reply_came()
{
    const auto now = Clock::now();
    {
        const std::lock_guard lock(m_mutex);
        ++m_count;
        m_last = now;
    }
    m_changed.notify_one();
}

Clock::time_point ReplyGate::wait_for(std::size_t count)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_count >= count; });
    return m_last;
}

double percentile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + rank, values.end());
    return values[static_cast<std::size_t>(rank)];
}

} // namespace bench
