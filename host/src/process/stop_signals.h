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

    /// Waits for one of them and returns its number. From then on a further one ends the process at once.
    int wait();

private:
    sigset_t m_set{};
};

} // namespace zorbd

#endif
