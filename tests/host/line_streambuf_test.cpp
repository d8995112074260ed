// SPDX-License-Identifier: Apache-2.0
// What many threads write to one stream comes out in whole lines.
#include <gmock/gmock.h>

#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "events/line_streambuf.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zorbd::LineStreambuf;

class CollectedLines : public zorbd::LineSink
{
public:
    void take_line(std::string_view line) noexcept override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.emplace_back(line);
    }

    std::vector<std::string> lines() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines; ///< guarded by m_mutex
};

class LineStream : public testing::Test
{
protected:
    std::shared_ptr<CollectedLines> m_lines = std::make_shared<CollectedLines>();
    LineStreambuf m_buffer{m_lines};
    std::ostream m_stream{&m_buffer};
};

TEST_F(LineStream, puts_the_pieces_of_a_line_together)
{
    m_stream << "CALL RPC "
             << "advertising" << std::endl;
    m_stream << "returns: " << -4 << ' ' << true << '\n';

    EXPECT_THAT(m_lines->lines(), ElementsAre("CALL RPC advertising", "returns: -4 1"));
}

TEST_F(LineStream, takes_several_lines_and_empty_ones_from_one_piece)
{
    m_stream << "one\n\nthree\nfo";
    m_stream << "ur\n";

    EXPECT_THAT(m_lines->lines(), ElementsAre("one", "", "three", "four"));
}

TEST_F(LineStream, keeps_a_line_back_until_its_end_however_often_it_is_flushed)
{
    m_stream << "half" << std::flush;
    EXPECT_THAT(m_lines->lines(), IsEmpty());

    m_stream << " and half" << std::endl;
    EXPECT_THAT(m_lines->lines(), ElementsAre("half and half"));
}

TEST_F(LineStream, keeps_what_threads_write_at_the_same_time_apart)
{
    m_stream << "the first ";
    std::thread([this] { m_stream << "another" << std::endl; }).join();
    m_stream << "thread" << std::endl;

    EXPECT_THAT(m_lines->lines(), ElementsAre("another", "the first thread"));
}

TEST_F(LineStream, takes_what_a_thread_leaves_behind_as_its_last_line)
{
    std::thread([this] { m_stream << "no end"; }).join();

    EXPECT_THAT(m_lines->lines(), ElementsAre("no end"));
}

TEST_F(LineStream, hands_a_line_that_is_too_long_over_in_parts)
{
    const std::string part(LineStreambuf::longest_line, 'x');

    m_stream << part << part << "rest" << std::endl;

    EXPECT_THAT(m_lines->lines(), ElementsAre(part, part, "rest"));
}

TEST(line_streams, do_not_mix_when_one_thread_writes_to_two)
{
    const auto lines = std::make_shared<CollectedLines>();
    const auto errors = std::make_shared<CollectedLines>();
    LineStreambuf line_buffer(lines);
    LineStreambuf error_buffer(errors);
    std::ostream line_stream(&line_buffer);
    std::ostream error_stream(&error_buffer);

    line_stream << "a ";
    error_stream << "an ";
    line_stream << "line\n";
    error_stream << "error\n";

    EXPECT_THAT(lines->lines(), ElementsAre("a line"));
    EXPECT_THAT(errors->lines(), ElementsAre("an error"));
}

TEST(line_streams, hand_over_the_rest_when_they_end)
{
    const auto lines = std::make_shared<CollectedLines>();
    {
        LineStreambuf buffer(lines);
        std::ostream(&buffer) << "the rest";
    }

    EXPECT_THAT(lines->lines(), ElementsAre("the rest"));
}

} // namespace
