// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_CALLS_H
#define BENCH_CALLS_H

#include "latency_log.h"

namespace bench {

/// A way to make one request to a server process and to learn when its reply has come.
class Calls
{
public:
    virtual ~Calls() = default;
    /// Sends one request and returns; the reply goes to the gate, on another thread.
    virtual void start() = 0;

    ReplyGate& replies() { return m_replies; }

private:
    ReplyGate m_replies;
};

} // namespace bench

#endif
