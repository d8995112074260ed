// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_REPLY_DELAY_H
#define SERVER_PROCESS_REPLY_DELAY_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace varnel {

/// Makes replies late, as a real network does. Any thread.
class ReplyDelay
{
public:
    explicit ReplyDelay(std::chrono::milliseconds delay) : m_delay(delay) {}

    /// Waits for the delay, or until end().
    void wait();

    /// Ends every wait, also those to come.
    void end();

private:
    const std::chrono::milliseconds m_delay;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_is_ended = false; // guarded by m_mutex
};

} // namespace varnel

#endif
