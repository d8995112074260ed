// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_NETWORK_CLOCK_H
#define SERVER_NETWORK_CLOCK_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace varnel {

/// The time that the network goes by. Any thread may call it.
class Clock
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    virtual ~Clock() = default;

    virtual TimePoint now() const = 0;

    /// Waits until `changed` is notified or this clock reaches `deadline`; for ever without one. It may
    /// return early. `lock` is held before and after.
    virtual void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                      std::optional<TimePoint> deadline) = 0;
};

/// Real time that no one can set.
class SteadyClock : public Clock
{
public:
    TimePoint now() const override { return std::chrono::steady_clock::now(); }
    void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
              std::optional<TimePoint> deadline) override;
};

} // namespace varnel

#endif
