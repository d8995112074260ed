// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_STOP_SIGNALS_H
#define SERVER_PROCESS_STOP_SIGNALS_H

#include <csignal>

#include <chrono>

namespace varnel {

/// SIGTERM and SIGINT as something to wait for.
class StopSignals
{
public:
    /// Blocks them for the calling thread and the threads that it starts from now on. To be made before any
    /// other thread is started.
    StopSignals();

    /// Waits for one of them; any thread.
    void wait() const;
    /// Waits for `limit` at most; whether one came.
    bool wait_for(std::chrono::milliseconds limit) const;

private:
    sigset_t m_signals{};
};

} // namespace varnel

#endif
