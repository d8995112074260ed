// SPDX-License-Identifier: Apache-2.0
#include "steady_calls.h"

#include <chrono>
#include <utility>

namespace two_hosts {

SteadyCalls::SteadyCalls(const RemoteHost& host, std::string method)
    : m_host(host), m_method(std::move(method)), m_thread([this] { run(); })
{
}

void SteadyCalls::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_stop_asked.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

int SteadyCalls::accepted() const
{
    const std::lock_guard lock(m_mutex);
    return m_accepted;
}

void SteadyCalls::run()
{
    constexpr std::chrono::milliseconds pause{5};
    std::unique_lock lock(m_mutex);
    while (!m_stopped) {
        lock.unlock();
        const bool accepted = is_accepted(m_host.call(m_method));
        lock.lock();
        m_accepted += accepted ? 1 : 0;
        m_stop_asked.wait_for(lock, pause, [this] { return m_stopped; });
    }
}

} // namespace two_hosts
