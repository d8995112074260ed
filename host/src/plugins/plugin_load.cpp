// SPDX-License-Identifier: Apache-2.0
#include "plugins/plugin_load.h"

#include <algorithm>

namespace zorbd {

bool PluginLoad::try_enter()
{
    std::size_t running = m_running;
    do {
        if (running >= m_max_running)
            return false;
    } while (!m_running.compare_exchange_weak(running, running + 1));
    return true;
}

PluginLoad::Entry PluginLoad::enter(Waiter& waiter)
{
    if (m_waiter_count == 0 && try_enter())
        return Entry::entered;
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_waiter_count; // before the last look: whoever leaves after that sees it
    if (m_waiters.empty() && try_enter()) {
        --m_waiter_count;
        return Entry::entered;
    }
    if (is_blocked() || m_waiters.size() >= m_max_waiting) {
        --m_waiter_count;
        return Entry::refused;
    }
    m_waiters.push_back(&waiter);
    return Entry::waits;
}

void PluginLoad::leave()
{
    --m_running;
    if (m_waiter_count == 0)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_waiters.empty() || !try_enter())
        return; // whoever was quicker will leave, too
    Waiter* next = m_waiters.front();
    m_waiters.pop_front();
    --m_waiter_count;
    next->take_place(); // only hands it to a thread
}

bool PluginLoad::forget(Waiter& waiter)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = std::find(m_waiters.begin(), m_waiters.end(), &waiter);
    if (found == m_waiters.end())
        return false;
    m_waiters.erase(found);
    --m_waiter_count;
    return true;
}

PluginLoads::PluginLoads(const std::vector<std::string>& files, std::size_t max_running,
                         std::size_t max_waiting)
{
    for (const std::string& file : files)
        m_loads.try_emplace(file, max_running, max_waiting);
}

bool PluginLoads::is_any_blocked() const
{
    return std::any_of(m_loads.begin(), m_loads.end(),
                       [](const auto& load) { return load.second.is_blocked(); });
}

} // namespace zorbd
