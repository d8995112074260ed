// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "rmi_test.h"

namespace {

using drill::Proxy;
using drill::Server;
using testing::HasSubstr;
namespace rmi = org::opensplice::DDS_RMI;

bool start(const rmi::CRuntime_ref& runtime, const std::string& option)
{
    std::array<const char*, 2> arguments{"test", option.c_str()};
    return runtime->start(arguments.size(), arguments.data());
}

bool start(const rmi::CRuntime_ref& runtime)
{
    return runtime->start(0, nullptr);
}

/// The fixture is one user of the runtime.
using Runtime = drill::RmiTest;

TEST_F(Runtime, stays_up_for_the_others_when_one_user_stops)
{
    const Server server;
    const Proxy proxy = find_proxy();
    const rmi::CRuntime_ref other = rmi::CRuntime::getDefaultRuntime();
    ASSERT_TRUE(start(other));

    EXPECT_TRUE(other->stop());

    EXPECT_TRUE(runtime()->isUsable());
    EXPECT_EQ(proxy->echo(7), 7);
}

TEST_F(Runtime, is_not_taken_away_by_a_user_that_stops_twice)
{
    const rmi::CRuntime_ref other = rmi::CRuntime::getDefaultRuntime();
    ASSERT_TRUE(start(other));

    EXPECT_TRUE(other->stop());
    EXPECT_FALSE(other->stop());

    EXPECT_TRUE(runtime()->isUsable());
}

TEST_F(Runtime, is_not_taken_away_by_a_user_that_never_started_it)
{
    const rmi::CRuntime_ref other = rmi::CRuntime::getDefaultRuntime();

    EXPECT_FALSE(other->stop());

    EXPECT_TRUE(runtime()->isUsable());
}

TEST_F(Runtime, goes_down_with_its_last_user)
{
    const rmi::CRuntime_ref other = rmi::CRuntime::getDefaultRuntime();
    ASSERT_TRUE(start(other));

    EXPECT_TRUE(runtime()->stop());
    EXPECT_TRUE(other->isUsable());
    EXPECT_TRUE(other->stop());

    EXPECT_FALSE(other->isUsable());
    EXPECT_FALSE(runtime()->isUsable());
}

TEST_F(Runtime, works_again_after_it_was_down)
{
    constexpr int rounds = 5;
    const Server server;

    for (int round = 0; round < rounds; ++round) {
        EXPECT_EQ(find_proxy()->echo(round), round);
        EXPECT_TRUE(runtime()->stop());
        ASSERT_TRUE(start(runtime(), "--RMIServiceDiscoveryTimeout=60"));
    }
    EXPECT_EQ(find_proxy()->echo(7), 7);
}

TEST_F(Runtime, does_not_serve_a_call_to_a_proxy_from_before_it_was_down)
{
    const Server server;
    const Proxy proxy = find_proxy();

    EXPECT_TRUE(runtime()->stop());
    ASSERT_TRUE(start(runtime()));

    EXPECT_THROW(proxy->echo(7), rmi::BAD_INV_ORDER);
}

class GoodOption : public testing::TestWithParam<std::string>
{
};

TEST_P(GoodOption, is_taken)
{
    const test_support::DdsDomain domain;
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();

    EXPECT_TRUE(start(runtime, GetParam()));
    EXPECT_TRUE(runtime->stop());
}

INSTANTIATE_TEST_SUITE_P(Options, GoodOption,
                         testing::Values("--RMIClientThreadingModel=ST", "--RMIClientThreadingModel=MT",
                                         "--RMIServiceDiscoveryTimeout=0", "--RMIServiceDiscoveryTimeout=-1",
                                         "--RMIServiceDiscoveryTimeout=3600", "--RMIServerThreadingModel=ST",
                                         "--RMIServerThreadingModel=ST,1", "--RMIServerThreadingModel=MT,8",
                                         "--RMIServerThreadingModel=TPS,256", "--RMIDurability=yes",
                                         "--RMIDurability=no"));

class BadOption : public testing::TestWithParam<std::string>
{
};

TEST_P(BadOption, is_named_on_standard_error_and_leaves_the_runtime_down)
{
    const test_support::DdsDomain domain;
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();

    testing::internal::CaptureStderr();
    const bool started = start(runtime, GetParam());
    const std::string message = testing::internal::GetCapturedStderr();

    EXPECT_FALSE(started);
    EXPECT_THAT(message, HasSubstr("'" + GetParam() + "'"));
    EXPECT_FALSE(runtime->isUsable());
    EXPECT_FALSE(runtime->stop());
}

INSTANTIATE_TEST_SUITE_P(Options, BadOption,
                         testing::Values("--RMIUnknown=1", "RMIDurability=yes", "--RMIDurability",
                                         "--RMIDurability=", "--RMIDurability=maybe",
                                         "--RMIClientThreadingModel=TPS", "--RMIClientThreadingModel=st",
                                         "--RMIServiceDiscoveryTimeout=-2",
                                         "--RMIServiceDiscoveryTimeout=1.5",
                                         "--RMIServiceDiscoveryTimeout=99999999999",
                                         "--RMIServiceDiscoveryTimeout=", "--RMIServerThreadingModel=MT,0",
                                         "--RMIServerThreadingModel=MT,257", "--RMIServerThreadingModel=MT,",
                                         "--RMIServerThreadingModel=MT,4,4", "--RMIServerThreadingModel=XT"));

} // namespace
