// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_STOP_SIGNALS_H
#define ZORBD_STOP_SIGNALS_H

#include <csignal>

namespace zorbd {

/// The signals that ask the process to stop: SIGTERM, SIGINT, SIGHUP. To be constructed before any thread is
/// started, so that all of them leave the signals to wait().
class StopSignals
{
public:
    StopSignals();

    /// Waits for one of them and returns its number.
    int wait() const;
    /// From now on one of them ends the process at once.
    void let_through() const;

private:
    sigset_t m_set{};
};

} // namespace zorbd

#endif
