// SPDX-License-Identifier: Apache-2.0
#include "plugins/plugin.h"

#include <algorithm>
#include <utility>

#include "plugins/running_plugin.h"
#include "system/duration_text.h"
#include "system/message_log.h"

namespace zorbd {
Plugin::Plugin(std::string file, BindingPauses pauses) : m_library(std::move(file)), m_pauses(pauses) {}

Plugin::~Plugin()
{
    release();
}

void Plugin::start(OnBound on_bound)
{
    m_on_bound = std::move(on_bound);
    m_binding_over = false;
    m_thread = std::thread([this] { run(); });
}

void Plugin::stop_binding()
{
    want(Wanted::handler_kept);
}

bool Plugin::wait_binding_over(std::chrono::steady_clock::time_point deadline)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_until(lock, deadline, [this] { return m_binding_over; });
}

void Plugin::release()
{
    want(Wanted::nothing);
    if (m_thread.joinable())
        m_thread.join();
}

void Plugin::want(Wanted wanted)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_wanted = std::max(m_wanted, wanted);
    }
    m_changed.notify_all();
}

void Plugin::run()
{
    bind();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_binding_over = true;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_wanted == Wanted::nothing; });
    lock.unlock();
    const RunningPlugin running(file());
    m_handler.reset();
}

void Plugin::bind()
{
    std::chrono::milliseconds pause_now = m_pauses.first;
    while (is_binding_wanted()) {
        const auto failure = try_to_bind();
        if (!failure)
            return;
        pause(*failure, pause_now);
        pause_now = std::min(2 * pause_now, m_pauses.longest);
    }
}

/// Why it could not be bound; nothing when it is bound now.
std::optional<std::string> Plugin::try_to_bind()
{
    const RunningPlugin running(file());
    try {
        std::unique_ptr<zeb::api::KX_RPCHandler> handler = m_library.make_handler();
        if (!handler->isBound())
            return "the service that it needs was not found";
        m_on_bound(*handler);
        m_handler = std::move(handler);
        return std::nullopt;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "its factory threw something that is no std::exception";
    }
}

bool Plugin::is_binding_wanted()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_wanted == Wanted::binding;
}

void Plugin::pause(const std::string& cause, std::chrono::milliseconds duration)
{
    if (!is_binding_wanted())
        return;
    log_message("plug-in " + file() + " is not bound: " + cause + "; next attempt in " +
                seconds_text(duration) + " s");
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, duration, [this] { return m_wanted != Wanted::binding; });
}

} // namespace zorbd
