// SPDX-License-Identifier: Apache-2.0
#include "process/stop_signals.h"

#include <cerrno>
#include <ctime>

namespace varnel {

namespace {

timespec to_timespec(std::chrono::milliseconds time)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const std::chrono::nanoseconds rest = time - seconds;
    timespec result{};
    result.tv_sec = static_cast<time_t>(seconds.count());
    result.tv_nsec = static_cast<long>(rest.count());
    return result;
}

} // namespace

StopSignals::StopSignals()
{
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGTERM);
    sigaddset(&m_signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
}

void StopSignals::wait() const
{
    int signal = 0;
    sigwait(&m_signals, &signal);
}

bool StopSignals::wait_for(std::chrono::milliseconds limit) const
{
    const timespec time = to_timespec(limit);
    return sigtimedwait(&m_signals, nullptr, &time) > 0;
}

} // namespace varnel
