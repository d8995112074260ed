// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_CALLER_H
#define BENCH_CALLER_H

#include <chrono>
#include <cstddef>

#include "calls.h"

namespace bench {

/// Makes calls and waits for their replies.
class Caller
{
public:
    explicit Caller(Calls& calls) : m_calls(calls) {}

    /// Seconds from the call to its reply.
    double one_call()
    {
        const auto begin = Clock::now();
        m_calls.start();
        return std::chrono::duration<double>(m_calls.replies().wait_for(++m_done) - begin).count();
    }

    /// Seconds for `count` calls of which 64 are outstanding at a time.
    double pipelined(std::size_t count)
    {
        constexpr std::size_t outstanding = 64;
        const auto begin = Clock::now();
        for (std::size_t i = 0; i < count; ++i) {
            m_calls.start();
            ++m_done;
            if (i >= outstanding)
                m_calls.replies().wait_for(m_done - outstanding);
        }
        return std::chrono::duration<double>(m_calls.replies().wait_for(m_done) - begin).count();
    }

private:
    Calls& m_calls;
    std::size_t m_done = 0;
};

} // namespace bench

#endif
