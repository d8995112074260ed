// SPDX-License-Identifier: Apache-2.0
#include "network/revert_timer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "child_process.h"
#include "manual_clock.h"
#include "network/sensor_network.h"

using namespace varnel;
using std::chrono::seconds;
using test_support::event_deadline;

namespace {

/// What other threads did, in its order.
template <class Event>
class Events
{
public:
    void add(Event event)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back(std::move(event));
        m_added.notify_all();
    }

    /// The oldest that was not taken yet; nothing when none comes.
    std::optional<Event> take()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_added.wait_for(lock, event_deadline, [this] { return !m_events.empty(); }))
            return std::nullopt;
        Event event = std::move(m_events.front());
        m_events.pop_front();
        return event;
    }

    bool is_empty()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_events.empty();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_added;
    std::deque<Event> m_events; // guarded by m_mutex
};

using Reverted = std::pair<std::string, std::string>;

class RevertingNetwork : public testing::Test
{
protected:
    static constexpr const char* a = "00:00:00:00:00:0A";
    static constexpr const char* b = "00:00:00:00:00:0B";

    void SetUp() override { network.network_commission("00000000000A 00000000000B"); }

    ManualClock clock;
    Events<Reverted> events;
    SensorNetwork network{clock, [this](MacAddress node, const std::string& config) {
                              events.add({node.text(), config});
                          }};
};

} // namespace

TEST_F(RevertingNetwork, tells_of_a_revert_without_being_asked)
{
    network.node_set_config(a, "mode=slow");
    network.node_set_config_revert(a, "mode=fast", 10);

    clock.advance(seconds(10));

    EXPECT_EQ(events.take(), Reverted(a, "mode=slow"));
}

TEST_F(RevertingNetwork, tells_of_reverts_in_the_order_of_their_times)
{
    network.node_set_config_revert(a, "mode=fast", 100);
    network.node_set_config_revert(b, "mode=fast", 10);

    clock.advance(seconds(10));
    EXPECT_EQ(events.take(), Reverted(b, ""));

    clock.advance(seconds(90));
    EXPECT_EQ(events.take(), Reverted(a, ""));
}

TEST_F(RevertingNetwork, tells_nothing_of_a_revert_that_was_cancelled)
{
    network.node_set_config_revert(a, "mode=fast", 10);
    network.node_set_config(a, "mode=fixed");
    network.node_set_config_revert(b, "mode=fast", 20);

    clock.advance(seconds(20));

    EXPECT_EQ(events.take(), Reverted(b, ""));
    EXPECT_TRUE(events.is_empty());
}

TEST_F(RevertingNetwork, may_be_used_by_its_listener)
{
    Events<std::string> lists;
    SensorNetwork* reentered = nullptr;
    SensorNetwork other(
        clock, [&](MacAddress, const std::string&) { lists.add(reentered->network_get_node_list().detail); });
    reentered = &other;
    other.network_commission(a);
    other.node_set_config_revert(a, "mode=fast", 1);

    clock.advance(seconds(1));

    EXPECT_EQ(lists.take(), a);
}

TEST(RevertTimer, really_waits_for_the_time_that_its_task_names)
{
    SteadyClock clock;
    Events<Clock::TimePoint> runs;
    bool is_first = true;
    const RevertTimer timer(clock, [&]() -> std::optional<Clock::TimePoint> {
        runs.add(clock.now());
        if (!std::exchange(is_first, false))
            return std::nullopt;
        return clock.now() + std::chrono::milliseconds(50);
    });

    const auto first = runs.take();
    const auto second = runs.take();

    ASSERT_TRUE(first && second);
    EXPECT_GE(*second - *first, std::chrono::milliseconds(50));
}

TEST(RevertTimer, calls_its_task_when_it_is_woken)
{
    SteadyClock clock;
    Events<int> runs;
    RevertTimer timer(clock, [&]() -> std::optional<Clock::TimePoint> {
        runs.add(1);
        return std::nullopt;
    });
    ASSERT_TRUE(runs.take());

    timer.wake();

    EXPECT_TRUE(runs.take());
}

TEST(RevertTimer, goes_on_after_its_task_failed)
{
    SteadyClock clock;
    Events<int> runs;
    bool is_first = true;
    RevertTimer timer(clock, [&]() -> std::optional<Clock::TimePoint> {
        runs.add(1);
        if (std::exchange(is_first, false))
            throw std::runtime_error("no memory");
        return std::nullopt;
    });
    ASSERT_TRUE(runs.take());

    EXPECT_TRUE(runs.take());
}

TEST(RevertTimer, ends_at_once_while_its_task_is_far_from_due)
{
    SteadyClock clock;
    const auto begin = clock.now();

    {
        const RevertTimer timer(clock, [&] { return std::optional(clock.now() + std::chrono::hours(1)); });
    }

    EXPECT_LT(clock.now() - begin, event_deadline);
}
