// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CALL_OBSERVER_H
#define ZORBD_CALL_OBSERVER_H

#include <chrono>
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

/// Decides who may call what, and is told of each call as it ends, on the thread that ran it and before its
/// answer is sent. No operation may wait.
class CallObserver
{
public:
    virtual ~CallObserver() = default;

    /// Why the method must not be called; empty when it may be.
    virtual std::string refusal_of(std::string_view method) const = 0;

    virtual void call_ended(const CallRecord& call) noexcept = 0;
};

} // namespace zorbd

#endif
