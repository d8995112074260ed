// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CALL_OBSERVER_H
#define ZORBD_CALL_OBSERVER_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace zorbd {

/// What became of a call.
struct CallRecord
{
    std::string_view method; ///< empty when nobody offers it, or the request names none
    std::string_view id;     ///< JSON text; empty for a notification
    std::chrono::steady_clock::duration duration{};
    int code = 0; ///< of the error; 0 when there is a result
};

/// Is thrown through Dispatcher::answer() when a call is to be tried again later, from the start.
struct CallWaits
{
};

/// Decides who may call what, and is told of the calls of one body, on the thread that runs them.
class CallObserver
{
public:
    virtual ~CallObserver() = default;

    /// Why the method must not be called; empty when it may be.
    virtual std::string refusal_of(std::string_view method) const = 0;

    /// What is to become of a call: with `waits` nothing of the body has been run, and the observer may be at
    /// work again on another thread by now; with `given_up` nobody waits for its answer any more.
    enum class Start { runs, waits, refused, given_up };

    /// Before a method of that plug-in is called.
    virtual Start call_starts(const std::string& /*plugin*/) { return Start::runs; }
    /// After a method that was called has returned.
    virtual void call_returned() noexcept {}
    /// Of each call as it ends, before its answer is sent. Must not wait.
    virtual void call_ended(const CallRecord& call) noexcept = 0;
    /// Of each request of a batch, in their order; nothing for a notification.
    virtual void answered(const std::optional<std::string>& /*response*/) {}
};

} // namespace zorbd

#endif
