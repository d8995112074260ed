// SPDX-License-Identifier: Apache-2.0
#include "process/stop_signals.h"

#include <initializer_list>

namespace zorbd {

StopSignals::StopSignals()
{
    sigemptyset(&m_set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&m_set, signal);
    pthread_sigmask(SIG_BLOCK, &m_set, nullptr);
}

int StopSignals::wait() const
{
    int received = 0;
    sigwait(&m_set, &received);
    return received;
}

void StopSignals::let_through() const
{
    pthread_sigmask(SIG_UNBLOCK, &m_set, nullptr);
}

} // namespace zorbd
