// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "support/dds_domain.h"

namespace {

using zeb::api::mdw::KX_DDS_RMI_RUNTIME;
using zeb::api::mdw::setServiceDiscoveryTimeout;

/// Lets a test see the handle that derived classes work with.
class Holder : public KX_DDS_RMI_RUNTIME
{
public:
    bool holds_runtime() const { return m_runtime.get() != nullptr; }
    bool is_usable() const { return m_runtime->isUsable(); }
};

class KxDdsRmiRuntime : public testing::Test
{
protected:
    static std::unique_ptr<Holder> started_holder()
    {
        auto holder = std::make_unique<Holder>();
        holder->startRUNTIME(true);
        return holder;
    }

    test_support::DdsDomain m_domain;
};

TEST_F(KxDdsRmiRuntime, is_usable_once_started)
{
    const auto holder = started_holder();

    EXPECT_TRUE(holder->is_usable());
}

TEST_F(KxDdsRmiRuntime, can_be_started_for_one_thread)
{
    Holder holder;
    holder.startRUNTIME(false);

    EXPECT_TRUE(holder.is_usable());
}

TEST_F(KxDdsRmiRuntime, stays_held_when_stopped)
{
    const auto holder = started_holder();

    holder->stopRUNTIME();

    ASSERT_TRUE(holder->holds_runtime());
    EXPECT_FALSE(holder->is_usable());
}

TEST_F(KxDdsRmiRuntime, can_be_stopped_twice)
{
    const auto holder = started_holder();
    holder->stopRUNTIME();

    EXPECT_NO_THROW(holder->stopRUNTIME());
}

TEST_F(KxDdsRmiRuntime, stays_up_for_the_holders_that_did_not_stop)
{
    const auto stays = started_holder();
    auto goes = started_holder();

    goes->stopRUNTIME();
    goes.reset();

    EXPECT_TRUE(stays->is_usable());
}

TEST_F(KxDdsRmiRuntime, goes_down_with_its_last_holder)
{
    auto holder = started_holder();
    const auto watcher = org::opensplice::DDS_RMI::CRuntime::getDefaultRuntime();
    ASSERT_TRUE(watcher->isUsable());

    holder.reset();

    EXPECT_FALSE(watcher->isUsable());
}

TEST(ServiceDiscoveryTimeout, must_be_seconds_or_for_ever)
{
    EXPECT_THROW(setServiceDiscoveryTimeout(-2), std::invalid_argument);
    EXPECT_NO_THROW(setServiceDiscoveryTimeout(-1));
    EXPECT_NO_THROW(setServiceDiscoveryTimeout(0));
}

} // namespace
