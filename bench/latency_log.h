// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_LATENCY_LOG_H
#define BENCH_LATENCY_LOG_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

/// Lets a caller wait for the replies that another thread sees come.
class ReplyGate
{
public:
    /// On the thread that gets the reply.
    void reply_came();

    /// Waits until `count` replies have come in all and gives when the last one did.
    Clock::time_point wait_for(std::size_t count);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_count = 0;  // guarded by m_mutex
    Clock::time_point m_last; // guarded by m_mutex
};

double percentile(std::vector<double> values, double share);

} // namespace bench

#endif
