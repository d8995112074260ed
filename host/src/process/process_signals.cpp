// SPDX-License-Identifier: Apache-2.0
#include "process/process_signals.h"

#include <ctime>
#include <initializer_list>

namespace zorbd {
namespace {

bool is_ignored(int signal)
{
    struct sigaction action
    {
    };
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

ProcessSignals::ProcessSignals()
{
    sigemptyset(&m_set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        if (!is_ignored(signal))
            sigaddset(&m_set, signal);
    pthread_sigmask(SIG_BLOCK, &m_set, nullptr);
}

std::optional<int> ProcessSignals::wait(std::optional<std::chrono::microseconds> limit)
{
    int received = 0;
    if (!limit) {
        sigwait(&m_set, &received);
        return received;
    }
    constexpr long micros_per_second = 1000000;
    timespec time{};
    time.tv_sec = static_cast<std::time_t>(limit->count() / micros_per_second);
    time.tv_nsec = static_cast<long>(limit->count() % micros_per_second) * 1000;
    received = sigtimedwait(&m_set, nullptr, &time);
    return received > 0 ? std::optional<int>(received) : std::nullopt;
}

void ProcessSignals::let_end_process()
{
    pthread_sigmask(SIG_UNBLOCK, &m_set, nullptr);
}

} // namespace zorbd
