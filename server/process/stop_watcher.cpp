// SPDX-License-Identifier: Apache-2.0
#include "process/stop_watcher.h"

#include <pthread.h>

#include <chrono>
#include <utility>

namespace varnel {

namespace {
constexpr std::chrono::milliseconds serving_check_interval{10};
constexpr std::chrono::milliseconds shutdown_interval{50};
} // namespace

StopWatcher::StopWatcher(const org::opensplice::DDS_RMI::CRuntime_ref& runtime, const StopSignals& signals,
                         Events events)
    : m_runtime(runtime), m_signals(signals), m_events(std::move(events)), m_thread([this] { run(); })
{
}

StopWatcher::~StopWatcher()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_has_returned = true;
    }
    m_returned.notify_all();
    // In case run() has ended without a signal and the watcher still waits for one. It only waits for it,
    // blocked; the signal ends no thread. NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread)
    pthread_kill(m_thread.native_handle(), SIGTERM);
    m_thread.join();
}

void StopWatcher::run()
{
    if (wait_until_serving()) {
        m_events.on_serving();
        m_signals.wait();
    }
    m_events.on_stop();
    end_run();
}

/// False when a stop signal came first. The runtime tells no one when it begins to serve; it can only be
/// asked.
bool StopWatcher::wait_until_serving()
{
    while (!m_runtime->is_running())
        if (m_signals.wait_for(serving_check_interval))
            return false;
    return true;
}

/// A shutdown that comes just before run() may be lost, so it is repeated until run() has returned.
void StopWatcher::end_run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_has_returned) {
        lock.unlock();
        m_runtime->shutdown(false);
        lock.lock();
        m_returned.wait_for(lock, shutdown_interval, [this] { return m_has_returned; });
    }
}

} // namespace varnel
