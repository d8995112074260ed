// SPDX-License-Identifier: Apache-2.0
#include "process/reply_delay.h"

namespace varnel {

void ReplyDelay::wait()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_ended.wait_for(lock, m_delay, [this] { return m_is_ended; });
}

void ReplyDelay::end()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_ended = true;
    }
    m_ended.notify_all();
}

} // namespace varnel
