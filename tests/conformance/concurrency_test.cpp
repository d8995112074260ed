// SPDX-License-Identifier: Apache-2.0
// Operations and replies on several threads at once.

#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

#include "framework/parse_json.h"
#include "operation_facts.h"
#include "operation_fixture.h"
#include "support/child_process.h"

namespace {

using namespace conformance;
using zeb::api::data::KX_JSON;

class Concurrency : public OperationTest
{
protected:
    /// Calls the operation without recording; each thread has values of its own.
    int call_plainly(const OperationFacts& facts)
    {
        const KX_JSON in = parse_json(request_for(facts));
        KX_JSON out;
        return m_operations.run(facts.name, in, out);
    }
};

/// Lets nobody through before `count` have come.
class Meeting
{
public:
    explicit Meeting(int count) : m_missing(count) {}

    bool come()
    {
        std::unique_lock lock(m_mutex);
        if (--m_missing == 0)
            m_changed.notify_all();
        m_is_given_up |= !m_changed.wait_for(lock, test_support::event_deadline,
                                             [this] { return m_missing <= 0 || m_is_given_up; });
        return !m_is_given_up;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_missing;              // guarded by m_mutex
    bool m_is_given_up = false; // guarded by m_mutex; nobody waits any more once somebody has waited too long
};

TEST_F(Concurrency, lets_two_calls_of_every_operation_be_in_the_remote_call_at_the_same_time)
{
    Meeting meeting(2 * static_cast<int>(all_operations().size()));
    rmi_layer().at["call"] = [&meeting] { EXPECT_TRUE(meeting.come()); };

    std::vector<std::thread> threads;
    threads.reserve(2 * all_operations().size());
    for (const OperationFacts& facts : all_operations())
        for (int twice = 0; twice < 2; ++twice)
            threads.emplace_back([&] { EXPECT_EQ(call_plainly(facts), 0); });
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(m_proxy->calls().size(), 2 * all_operations().size());
}

TEST_F(Concurrency, gives_calls_of_one_operation_their_own_handlers_and_copies)
{
    constexpr int threads_count = 4;
    constexpr int calls_of_each = 100;
    const OperationFacts& facts = facts_of("node_set_config");

    std::vector<std::thread> threads;
    threads.reserve(threads_count);
    for (int i = 0; i < threads_count; ++i)
        threads.emplace_back([&] {
            for (int call = 0; call < calls_of_each; ++call)
                EXPECT_EQ(call_plainly(facts), 0);
        });
    for (std::thread& thread : threads)
        thread.join();

    std::set<const void*> handlers;
    std::set<const void*> texts;
    for (const ReceivedCall& received : m_proxy->calls()) {
        handlers.insert(received.handler);
        texts.insert(received.texts.begin(), received.texts.end());
    }
    EXPECT_EQ(handlers.size(), std::size_t(threads_count * calls_of_each));
    EXPECT_EQ(texts.size(), 2 * handlers.size());
}

TEST_F(Concurrency, lets_replies_come_on_another_thread_while_operations_run)
{
    constexpr int calls = 200;
    const OperationFacts& facts = facts_of("network_get_info");
    for (int i = 0; i < calls; ++i)
        call_plainly(facts);
    const auto outstanding = m_proxy->calls();

    std::thread replies([&outstanding] {
        for (const ReceivedCall& received : outstanding)
            received.reply(1);
    });
    for (int i = 0; i < calls; ++i)
        EXPECT_EQ(call_plainly(facts), 0);
    replies.join();

    const std::string text = m_output.text();
    const auto count = [&text](const std::string& part) {
        int found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++found;
        return found;
    };
    EXPECT_EQ(count("CALL RPC "), 2 * calls);
    EXPECT_EQ(count("async_network_get_info returns: "), calls);
}

TEST_F(Concurrency, lets_the_last_reference_to_a_handler_go_on_another_thread)
{
    const Outcome outcome = call("advertising");
    ASSERT_EQ(outcome.result, 0);

    Events events;
    std::thread layer([&] {
        const Recording recording;
        m_proxy->forget_calls();
        events = recording.all();
    });
    layer.join();

    EXPECT_THAT(only({"handle", "mutex"}, events),
                testing::ElementsAre("handle: handler 0", "mutex: destroyed"));
}

} // namespace
