// SPDX-License-Identifier: Apache-2.0
// How much memory clients can make zorbd hold, and that it gives back what they took.
#include <gmock/gmock.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "process/open_files.h"
#include "support/emulator.h"
#include "zorbd_process.h"

namespace {

using host_test::ask;
using host_test::call;
using host_test::get;
using host_test::HttpConnection;
using host_test::Options;
using host_test::plugin;
using host_test::post;
using host_test::ZorbdProcess;
using testing::HasSubstr;

constexpr std::size_t mib = 1024; // in KiB

std::size_t resident_kib(const ZorbdProcess& process)
{
    std::ifstream status("/proc/" + std::to_string(process.pid()) + "/status");
    for (std::string word; status >> word;)
        if (word == "VmRSS:") {
            std::size_t kib = 0;
            status >> kib;
            return kib;
        }
    return 0;
}

class memory : public testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "sanitizers keep far more than is asked for";
#endif
    }

    /// Waits until the process has got that small, or that large.
    template <class Condition>
    static bool becomes(const ZorbdProcess& process, const Condition& condition)
    {
        const auto end = std::chrono::steady_clock::now() + test_support::event_deadline;
        while (!condition(resident_kib(process)))
            if (std::chrono::steady_clock::now() > end)
                return false;
            else
                std::this_thread::yield();
        return true;
    }

    static bool falls_below(const ZorbdProcess& process, std::size_t kib)
    {
        return becomes(process, [kib](std::size_t resident) { return resident < kib; });
    }

    static bool rises_above(const ZorbdProcess& process, std::size_t kib)
    {
        return becomes(process, [kib](std::size_t resident) { return resident > kib; });
    }
};

/// What is looked at would be the emulator's.
bool is_emulated()
{
    return test_support::under_emulator({ZORBD}).size() > 1;
}

/// Options that let so many connections in from one address.
Options for_connections(int count)
{
    const std::string text = std::to_string(count);
    return {"--max-connections", text, "--max-connections-per-address", text, "--max-listeners", text};
}

TEST_F(memory, of_a_thousand_idle_connections_is_little)
{
    zorbd::allow_open_files(1200);
    const ZorbdProcess zorbd(for_connections(1100));
    const std::size_t before = resident_kib(zorbd);
    std::vector<HttpConnection> idle;
    idle.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        idle.emplace_back(zorbd.port());
    for (HttpConnection* connection : {&idle.front(), &idle.back()}) { // so all of them have been taken in
        connection->send(post(call("seven")));
        EXPECT_EQ(connection->receive().status, 200);
    }

    const std::size_t cost = resident_kib(zorbd) - before;

    RecordProperty("cost_kib", static_cast<int>(cost));
    EXPECT_LT(cost, 16 * mib);
    EXPECT_EQ(ask(zorbd.port(), post(call("seven"))).status, 200);
}

TEST_F(memory, goes_back_when_nobody_reads_large_answers)
{
    if (is_emulated())
        GTEST_SKIP();
    const ZorbdProcess zorbd;
    const std::size_t before = resident_kib(zorbd);
    {
        std::vector<HttpConnection> careless;
        for (int i = 0; i < 16; ++i) {
            careless.emplace_back(zorbd.port());
            careless.back().send(post(call("fill", R"({"size":8000000})")));
        }
        ASSERT_TRUE(rises_above(zorbd, before + 100 * mib)) << "they are not kept at all";
    }

    EXPECT_TRUE(falls_below(zorbd, before + 16 * mib)) << resident_kib(zorbd) - before << " KiB stay";
}

TEST_F(memory, goes_back_when_nobody_reads_answers_of_many_small_parts)
{
    if (is_emulated())
        GTEST_SKIP();
    const ZorbdProcess zorbd({"--max-batch", "300"});
    std::string batch = "[" + call("fill", R"({"size":100000})");
    for (int i = 1; i < 300; ++i)
        batch += ',' + call("fill", R"({"size":100000})");
    batch += ']';
    const std::size_t before = resident_kib(zorbd);
    {
        std::vector<HttpConnection> careless;
        for (int i = 0; i < 5; ++i) {
            careless.emplace_back(zorbd.port());
            careless.back().send(post(batch));
        }
        ASSERT_TRUE(rises_above(zorbd, before + 60 * mib)) << "they are not kept at all";
    }

    EXPECT_TRUE(falls_below(zorbd, before + 16 * mib)) << resident_kib(zorbd) - before << " KiB stay";
}

/// Many clients that take events.
class Audience
{
public:
    Audience(const ZorbdProcess& zorbd, std::size_t count)
    {
        m_listeners.reserve(count);
        while (m_listeners.size() < count) {
            m_listeners.emplace_back(zorbd.port());
            m_listeners.back().send(get("/events"));
        }
        for (HttpConnection& listener : m_listeners)
            listener.receive_until("retry: 2000\n\n");
    }

private:
    std::vector<HttpConnection> m_listeners;
};

/// Has the plug-in write so many lines of that length.
void write_lines(const ZorbdProcess& zorbd, int lines, int length)
{
    const std::string line =
        call("say", R"({"text":")" + std::string(static_cast<std::size_t>(length), 'x') + "\"}");
    for (int i = 0; i < lines; ++i)
        ASSERT_EQ(ask(zorbd.port(), post(line)).status, 200);
}

Options with_talking(Options options)
{
    options.insert(options.end(), {"--plugin", plugin("talking")});
    return options;
}

TEST_F(memory, of_a_thousand_listeners_is_bounded_though_none_of_them_reads)
{
    if (is_emulated())
        GTEST_SKIP();
    constexpr std::size_t count = 1000;
    zorbd::allow_open_files(1200);
    ZorbdProcess zorbd(with_talking(for_connections(1100)));
    ASSERT_TRUE(zorbd.says("talking.so is bound"));
    write_lines(zorbd, 100, 60000); // so that the events that are kept are as many as may be
    const std::size_t before = resident_kib(zorbd);
    std::size_t silent = 0;
    std::size_t unread = 0;
    {
        const Audience audience(zorbd, count);
        EXPECT_THAT(ask(zorbd.port(), get("/metrics")).body,
                    HasSubstr("\nzorbd_listeners " + std::to_string(count) + '\n'));
        silent = resident_kib(zorbd) - before;
        write_lines(zorbd, 100, 60000);
        unread = resident_kib(zorbd) - before;
    }

    RecordProperty("silent_kib", static_cast<int>(silent));
    RecordProperty("unread_kib", static_cast<int>(unread));
    EXPECT_LT(silent, 16 * mib);
    EXPECT_LT(unread, count * 128 + 16 * mib);
    EXPECT_TRUE(falls_below(zorbd, before + 16 * mib)) << resident_kib(zorbd) - before << " KiB stay";
}

} // namespace
