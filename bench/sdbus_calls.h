// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_SDBUS_CALLS_H
#define BENCH_SDBUS_CALLS_H

#include <sdbus-c++/sdbus-c++.h>

#include <memory>

#include "calls.h"
#include "private_bus.h"
#include "support/child_process.h"

namespace bench {

/// Calls over D-Bus with sdbus-c++, whose event loop takes the replies in.
class SdbusCalls final : public Calls
{
public:
    SdbusCalls();
    ~SdbusCalls() override;
    void start() override;

private:
    PrivateBus m_bus;
    test_support::ChildProcess m_server;
    std::unique_ptr<sdbus::IProxy> m_proxy;
};

} // namespace bench

#endif
