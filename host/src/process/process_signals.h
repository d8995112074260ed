// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PROCESS_SIGNALS_H
#define ZORBD_PROCESS_SIGNALS_H

#include <chrono>
#include <csignal>
#include <optional>

namespace zorbd {

/// The signals that the process is steered by: SIGTERM and SIGINT stop it, SIGHUP makes it read its settings
/// again. One that was ignored when the process was started (nohup) stays ignored. To be constructed before
/// any thread is started, so that all of them leave the signals to wait().
class ProcessSignals
{
public:
    ProcessSignals();

    /// Waits for one of them and returns its number; nothing when none has come in time.
    std::optional<int> wait(std::optional<std::chrono::microseconds> limit);
    /// From now on each of them ends the process at once.
    void let_end_process();

private:
    sigset_t m_set{};
};

} // namespace zorbd

#endif
