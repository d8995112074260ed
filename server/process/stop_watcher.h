// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_STOP_WATCHER_H
#define SERVER_PROCESS_STOP_WATCHER_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "ddsrmi.h"

#include "process/stop_signals.h"

namespace varnel {

/// Beside a thread that is in the runtime's run(), or about to be: tells when the runtime serves, and ends
/// run() on a stop signal. To be destroyed when run() has returned.
class StopWatcher
{
public:
    /// Both run on the watcher's thread.
    struct Events
    {
        std::function<void()> on_serving;
        /// Before run() is ended.
        std::function<void()> on_stop;
    };

    /// `signals` must outlive it.
    StopWatcher(const org::opensplice::DDS_RMI::CRuntime_ref& runtime, const StopSignals& signals,
                Events events);
    ~StopWatcher();
    StopWatcher(const StopWatcher&) = delete;
    StopWatcher& operator=(const StopWatcher&) = delete;

private:
    void run();
    bool wait_until_serving();
    void end_run();

    const org::opensplice::DDS_RMI::CRuntime_ref m_runtime;
    const StopSignals& m_signals;
    const Events m_events;
    std::mutex m_mutex;
    std::condition_variable m_returned;
    bool m_has_returned = false; // guarded by m_mutex
    std::thread m_thread;        // last: it uses all of the above
};

} // namespace varnel

#endif
