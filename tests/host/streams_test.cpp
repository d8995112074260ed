// SPDX-License-Identifier: Apache-2.0
// Standard output and standard error: whole lines, and calls that go on whatever becomes of those who read
// them.
#include <gmock/gmock.h>

#include <csignal>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>

#include "fifo.h"
#include "json_matchers.h"
#include "temporary_folder.h"
#include "zorbd_process.h"

namespace {

using host_test::ask;
using host_test::call;
using host_test::Fifo;
using host_test::get;
using host_test::Options;
using host_test::plugin;
using host_test::post;
using host_test::start_redirected_zorbd;
using host_test::ZorbdProcess;
using test_support::ChildProcess;
using test_support::event_deadline;
using test_support::TemporaryFolder;
using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;

/// zorbd with the plug-in that talks, reached over a Unix socket; its streams go where the test says.
class Talker
{
public:
    explicit Talker(const std::string& redirection)
        : m_process(
              start_redirected_zorbd(redirection, {"--unix-socket", socket(), "--plugin", plugin("talking")}))
    {
        await([this] { return health().find(R"("bound":true)") != std::string::npos; });
    }

    ChildProcess& process() { return m_process; }

    std::string talk(int threads, int lines) const
    {
        return ask(socket(), post(call("talk", R"({"threads":)" + std::to_string(threads) + R"(,"lines":)" +
                                                   std::to_string(lines) + '}')))
            .body;
    }

    std::string health() const
    {
        try {
            return ask(socket(), get("/healthz")).body;
        } catch (const std::system_error&) {
            return {}; // it does not listen yet
        }
    }

    /// The health report once it has `text`.
    std::string health_with(const std::string& text) const
    {
        std::string report;
        await([&] { return (report = health()).find(text) != std::string::npos; });
        return report;
    }

private:
    std::string socket() const { return m_folder.path() / "socket"; }

    template <class Condition>
    static void await(const Condition& condition)
    {
        const auto deadline = std::chrono::steady_clock::now() + event_deadline;
        while (!condition() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
    }

    TemporaryFolder m_folder;
    ChildProcess m_process;
};

TEST(lines, of_many_threads_come_out_whole_and_none_is_missing)
{
    ZorbdProcess zorbd({"--plugin", plugin("talking")});
    ASSERT_TRUE(zorbd.says("talking.so is bound"));

    EXPECT_THAT(ask(zorbd.port(), post(call("talk", R"({"threads":8,"lines":500})"))).body,
                HasSubstr(R"("result":500)"));
    EXPECT_EQ(zorbd.terminate(), 0);

    std::multiset<std::string> expected;
    for (int thread = 0; thread < 8; ++thread)
        for (int i = 0; i < 500; ++i)
            expected.insert("thread " + std::to_string(thread) + " says " + std::to_string(i) + " of 500");
    std::multiset<std::string> written;
    std::istringstream output(zorbd.output());
    for (std::string line; std::getline(output, line);)
        if (line.compare(0, 14, "served_methods") != 0)
            written.insert(line);
    EXPECT_EQ(written, expected);
}

TEST(streams, whose_reader_stands_still_hold_up_neither_calls_nor_the_end)
{
    Fifo fifo;
    fifo.fill();
    Talker zorbd(">" + fifo.path());

    EXPECT_THAT(zorbd.talk(4, 20000), HasSubstr(R"("result":20000)"));

    EXPECT_THAT(zorbd.health_with("trouble"),
                AllOf(HasSubstr(R"("status":"ok")"), HasSubstr(R"("trouble":"its reader does not read")"),
                      testing::Not(HasSubstr(R"({"name":"stdout","dropped":0,)"))));
    EXPECT_EQ(zorbd.process().terminate(), 0);
}

TEST(streams, that_go_to_a_full_disk_hold_up_no_call_and_are_reported)
{
    Talker zorbd(">/dev/full");

    EXPECT_THAT(zorbd.talk(1, 3), HasSubstr(R"("result":3)"));

    EXPECT_THAT(zorbd.health_with("trouble"),
                HasSubstr(R"({"name":"stdout","dropped":0,"trouble":"No space left on device"})"));
    EXPECT_THAT(zorbd.talk(1, 3), HasSubstr(R"("result":3)"));
    EXPECT_EQ(zorbd.process().terminate(), 0);
}

TEST(streams, that_were_closed_before_the_start_are_reported_and_no_connection_gets_the_lines)
{
    Talker zorbd(">&-");

    EXPECT_THAT(zorbd.talk(1, 3), MatchesRegex(R"(\{"jsonrpc":"2.0","result":3,"id":1\})"));

    EXPECT_THAT(zorbd.health_with("trouble"), HasSubstr(R"("trouble":"Bad file descriptor")"));
    EXPECT_EQ(zorbd.process().terminate(), 0);
}

TEST(streams, go_on_when_their_reader_reads_again)
{
    Fifo fifo;
    fifo.fill();
    Talker zorbd(">" + fifo.path());
    EXPECT_THAT(zorbd.talk(1, 3), HasSubstr(R"("result":3)"));
    zorbd.health_with("trouble");

    ChildProcess reader({"/bin/cat", fifo.path()});

    EXPECT_EQ(reader.wait_for_line("thread 0 says 2"), "thread 0 says 2 of 3");
    EXPECT_THAT(zorbd.health_with(R"("stdout","dropped":0})"), testing::Not(HasSubstr("trouble")));
}

TEST(streams, of_messages_hold_up_nothing_either)
{
    Fifo fifo;
    fifo.fill();
    Talker zorbd("2>" + fifo.path());

    EXPECT_THAT(zorbd.health_with("trouble"), HasSubstr(R"("trouble":"its reader does not read")"));
    EXPECT_THAT(zorbd.talk(1, 3), HasSubstr(R"("result":3)"));
    EXPECT_EQ(zorbd.process().terminate(), 0);
    EXPECT_THAT(zorbd.process().output(), HasSubstr("thread 0 says 2 of 3\n"));
}

} // namespace
