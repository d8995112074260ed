// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PLUGIN_LOAD_H
#define ZORBD_PLUGIN_LOAD_H

#include <atomic>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace zorbd {

/// How many calls of one plug-in run. There is a bound, so that a plug-in whose methods hang takes no more
/// than its share of the threads. Every operation may be called from any thread.
class PluginLoad
{
public:
    /// A call that there was no room for.
    class Waiter
    {
    public:
        virtual ~Waiter() = default;
        /// Its call has begun: to be ended by leave(), whatever becomes of it. Must not wait or throw.
        virtual void take_place() noexcept = 0;
    };

    PluginLoad(std::size_t max_running, std::size_t max_waiting)
        : m_max_running(max_running), m_max_waiting(max_waiting)
    {
    }

    enum class Entry { entered, waits, refused };

    /// Begins a call, or lets it wait for its turn, or refuses it because too many wait already. A waiter
    /// gets its place once, on another thread perhaps before this returns.
    Entry enter(Waiter& waiter);
    /// Begins a call if there is room.
    bool try_enter();
    /// Begins a call, whether there is room or not.
    void enter_anyway() { ++m_running; }
    /// Ends a call. Who has waited longest gets the place.
    void leave();
    /// Forgets a waiter. False when it has, or is about to get, its place.
    bool forget(Waiter& waiter);

    /// A call that has begun takes too long; and it has ended after all.
    void add_stuck() { ++m_stuck; }
    void remove_stuck() { --m_stuck; }
    std::size_t stuck() const { return m_stuck; }
    /// Whether no call can run any more until one of those that take too long ends.
    bool is_blocked() const { return m_stuck >= m_max_running; }

private:
    const std::size_t m_max_running;
    const std::size_t m_max_waiting;
    std::atomic<std::size_t> m_running{0};
    std::atomic<std::size_t> m_stuck{0};
    std::atomic<std::size_t> m_waiter_count{0};
    std::mutex m_mutex;
    std::deque<Waiter*> m_waiters; ///< guarded by m_mutex
};

/// The loads of all plug-ins.
class PluginLoads
{
public:
    /// `files` are the plug-ins'; each has the same bounds.
    PluginLoads(const std::vector<std::string>& files, std::size_t max_running, std::size_t max_waiting);

    /// That of the plug-in with this file, which must be one of them.
    PluginLoad& of(const std::string& file) { return m_loads.find(file)->second; }
    const PluginLoad& of(const std::string& file) const { return m_loads.find(file)->second; }

    /// Whether a plug-in can run no call any more.
    bool is_any_blocked() const;

private:
    std::map<std::string, PluginLoad> m_loads; ///< the same from construction to destruction
};

} // namespace zorbd

#endif
