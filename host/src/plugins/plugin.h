// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PLUGIN_H
#define ZORBD_PLUGIN_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "plugins/plugin_library.h"

namespace zorbd {

/// How long a plug-in that is not bound waits before its factory is asked again: twice as long each time.
struct BindingPauses
{
    std::chrono::milliseconds first{1000};
    std::chrono::milliseconds longest{30000};
};

/// One loaded plug-in. A thread of its own asks its factory for a handler until one is bound, and later
/// deletes that handler, so a handler is made, asked and deleted on one thread and no plug-in holds up
/// another.
class Plugin
{
public:
    /// Is told of the bound handler, on the plug-in's thread. When it throws, the handler is deleted and
    /// counts as not bound.
    using OnBound = std::function<void(zeb::api::KX_RPCHandler&)>;

    /// Loads the file; throws PluginError. Nothing of the plug-in runs before start().
    Plugin(std::string file, BindingPauses pauses);
    /// Stops, if that has not been done.
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    const std::string& file() const { return m_library.file(); }

    /// Starts the thread. Throws std::system_error.
    void start(OnBound on_bound);

    /// Makes no further attempt to bind; a bound handler stays. Does not wait.
    void stop_binding();

    /// Whether no attempt to bind is running any more; waits for that after stop_binding(), at most until the
    /// deadline.
    bool wait_binding_over(std::chrono::steady_clock::time_point deadline);

    /// Deletes the handler and ends the thread; waits for a factory that runs. No method may run any more.
    void release();

private:
    enum class Wanted { binding, handler_kept, nothing };

    void run();
    void bind();
    std::optional<std::string> try_to_bind();
    bool is_binding_wanted();
    void pause(const std::string& cause, std::chrono::milliseconds duration);
    void want(Wanted wanted);

    PluginLibrary m_library;
    const BindingPauses m_pauses;
    OnBound m_on_bound;
    std::unique_ptr<zeb::api::KX_RPCHandler> m_handler; ///< the thread's own

    std::mutex m_mutex;
    std::condition_variable m_changed;
    Wanted m_wanted = Wanted::binding; ///< guarded by m_mutex
    bool m_binding_over = true;        ///< guarded by m_mutex
    std::thread m_thread;
};

} // namespace zorbd

#endif
