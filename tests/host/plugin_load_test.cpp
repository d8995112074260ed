// SPDX-License-Identifier: Apache-2.0
// Who gets a place among the running calls of a plug-in, and in which order.
#include "plugins/plugin_load.h"

#include <gtest/gtest.h>

namespace {

using zorbd::PluginLoad;

class Caller : public PluginLoad::Waiter
{
public:
    void take_place() noexcept override { ++places; }

    int places = 0;
};

class plugin_load : public testing::Test
{
protected:
    PluginLoad m_load{1, 2};
    Caller m_first, m_second, m_third, m_fourth;
};

TEST_F(plugin_load, gives_the_place_of_a_call_that_ends_to_who_has_waited_longest)
{
    EXPECT_EQ(m_load.enter(m_first), PluginLoad::Entry::entered);
    EXPECT_EQ(m_load.enter(m_second), PluginLoad::Entry::waits);
    EXPECT_EQ(m_load.enter(m_third), PluginLoad::Entry::waits);

    m_load.leave();

    EXPECT_EQ(m_second.places, 1);
    EXPECT_EQ(m_third.places, 0);
    EXPECT_FALSE(m_load.try_enter()) << "the place is taken";
    m_load.leave();
    EXPECT_EQ(m_third.places, 1);
    m_load.leave();
    EXPECT_TRUE(m_load.try_enter());
}

TEST_F(plugin_load, refuses_who_would_wait_beyond_the_bound)
{
    m_load.enter(m_first);
    m_load.enter(m_second);
    m_load.enter(m_third);

    EXPECT_EQ(m_load.enter(m_fourth), PluginLoad::Entry::refused);
}

TEST_F(plugin_load, refuses_to_let_wait_for_calls_that_take_too_long)
{
    m_load.enter(m_first);
    m_load.add_stuck();

    EXPECT_TRUE(m_load.is_blocked());
    EXPECT_EQ(m_load.enter(m_second), PluginLoad::Entry::refused);
}

TEST_F(plugin_load, passes_over_who_waits_no_more)
{
    m_load.enter(m_first);
    m_load.enter(m_second);
    m_load.enter(m_third);

    EXPECT_TRUE(m_load.forget(m_second));
    m_load.leave();

    EXPECT_EQ(m_second.places, 0);
    EXPECT_EQ(m_third.places, 1);
    EXPECT_FALSE(m_load.forget(m_third)) << "it has its place";
}

TEST_F(plugin_load, hands_no_place_on_that_somebody_took_without_asking)
{
    m_load.enter(m_first);
    m_load.enter_anyway();
    m_load.enter(m_second);

    m_load.leave();
    EXPECT_EQ(m_second.places, 0);
    m_load.leave();
    EXPECT_EQ(m_second.places, 1);
}

} // namespace
