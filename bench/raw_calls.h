// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_RAW_CALLS_H
#define BENCH_RAW_CALLS_H

#include <atomic>
#include <thread>

#include "calls.h"
#include "raw_exchange.h"
#include "support/child_process.h"

namespace bench {

/// Calls written on the Cyclone C API.
class RawCalls final : public Calls
{
public:
    RawCalls();
    ~RawCalls() override;
    void start() override;

private:
    void take_replies();

    test_support::ChildProcess m_server;
    RawEnd m_end;
    std::atomic<bool> m_stopped{false};
    unsigned m_last_number = 0;
    std::thread m_receiver;
};

} // namespace bench

#endif
