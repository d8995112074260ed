// SPDX-License-Identifier: Apache-2.0
#include "process/reply_delay.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "child_process.h"

using varnel::ReplyDelay;
using Time = std::chrono::steady_clock;

TEST(ReplyDelay, waits_for_its_time)
{
    ReplyDelay delay(std::chrono::milliseconds(40));
    const Time::time_point begin = Time::now();

    delay.wait();

    EXPECT_GE(Time::now() - begin, std::chrono::milliseconds(40));
}

TEST(ReplyDelay, is_cut_short_by_its_end)
{
    ReplyDelay delay(std::chrono::minutes(10));
    const Time::time_point begin = Time::now();
    std::thread waiting([&delay] { delay.wait(); });

    delay.end();
    waiting.join();
    delay.wait();

    EXPECT_LT(Time::now() - begin, test_support::event_deadline);
}
