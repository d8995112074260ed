// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SERVER_NETWORK_TEST_H
#define TESTS_SERVER_NETWORK_TEST_H

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "contract/reply.h"
#include "manual_clock.h"
#include "network/sensor_network.h"

/// A network of its own for each test, under a clock that stands still.
class NetworkTest : public testing::Test
{
protected:
    static constexpr const char* a = "00:00:00:00:00:0A";
    static constexpr const char* b = "00:00:00:00:00:0B";
    static constexpr const char* c = "00:00:00:00:00:0C";

    static int failed(varnel::Failure failure) { return static_cast<int>(failure); }

    /// `number` addresses that differ, from 00:00:00:00:01:00 on.
    static std::string many_addresses(unsigned number)
    {
        std::string list;
        char address[16];
        for (unsigned i = 0; i < number; ++i) {
            std::snprintf(address, sizeof address, "%012x,", 0x100U + i);
            list += address;
        }
        return list;
    }

    ManualClock clock;
    varnel::SensorNetwork network{clock};
};

#endif
