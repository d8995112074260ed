// SPDX-License-Identifier: Apache-2.0
// What a listener reads of the events, however long they are.
#include "events/event_feed.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using zorbd::EventFeed;
using zorbd::EventLimits;

EventLimits large_memory()
{
    EventLimits limits;
    limits.memory = 64U << 20U;
    return limits;
}

class event_feed : public testing::Test
{
protected:
    /// Reads all that there is now, in small pieces.
    static std::string read_all(EventFeed::Listener& listener)
    {
        std::string all;
        std::array<char, 1000> buffer{};
        std::size_t size = buffer.size();
        while (listener.read(buffer.data(), size) == EventFeed::Listener::State::text) {
            all.append(buffer.data(), size);
            size = buffer.size();
        }
        return all;
    }

    static std::size_t count(const std::string& text, const std::string& part)
    {
        std::size_t found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++found;
        return found;
    }

    EventFeed m_feed{large_memory()};
};

TEST_F(event_feed, gives_every_event_in_its_order_whatever_their_length)
{
    const auto listener = m_feed.listen(std::nullopt, [] {});
    for (int i = 0; i < 500; ++i)
        m_feed.add_line("", std::string(i % 7 == 0 ? 60000 : 10, 'x') + " number " + std::to_string(i) + ';');

    const std::string all = read_all(*listener);

    std::size_t at = 0;
    for (int i = 0; i < 500 && at != std::string::npos; ++i)
        at = all.find(" number " + std::to_string(i) + ';', at);
    EXPECT_NE(at, std::string::npos);
    EXPECT_EQ(count(all, "event: line\n"), 500U);
}

} // namespace
