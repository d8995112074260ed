// SPDX-License-Identifier: Apache-2.0
#include "discovery/announcement.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "wire/messages.h"

namespace {

using org::opensplice::DDS_RMI::Announcement;

const std::string own_version = std::to_string(org::opensplice::DDS_RMI::wire_version);

TEST(AnnouncementText, comes_back_as_it_was)
{
    const Announcement announcement{std::numeric_limits<std::uint64_t>::max(),
                                    std::numeric_limits<DDS::Long>::min(), "Module::Interface", "a service"};

    const auto parsed = Announcement::parse(announcement.to_text());

    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->epoch, announcement.epoch);
    EXPECT_EQ(parsed->instance, announcement.instance);
    EXPECT_EQ(parsed->server_class, announcement.server_class);
    EXPECT_EQ(parsed->service, announcement.service);
}

class AnyServiceName : public testing::TestWithParam<std::string>
{
};

TEST_P(AnyServiceName, is_announced)
{
    const auto parsed = Announcement::parse(Announcement{1, 2, "M::I", GetParam()}.to_text());

    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->service, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Odd, AnyServiceName,
                         testing::Values("", " ", "two words", " before", "behind ", "1 2 3",
                                         "ddsrmi 2 1 1 M::I s", std::string("a\0b", 3), "line\nbreak",
                                         "\xff\xfe", std::string(10'000, 'x')));

class NoAnnouncement : public testing::TestWithParam<std::string>
{
};

TEST_P(NoAnnouncement, is_passed_over)
{
    EXPECT_FALSE(Announcement::parse(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Odd, NoAnnouncement,
    testing::Values("", " ", "ddsrmi", "ddsrmi ", "ddsrmi  ", "DDSRMI " + own_version + " 1 1 M::I s",
                    " ddsrmi " + own_version + " 1 1 M::I s", "ddsrmi" + own_version + " 1 1 M::I s",
                    "ddsrmi " + own_version, "ddsrmi " + own_version + " ", "ddsrmi " + own_version + " 1",
                    "ddsrmi " + own_version + " 1 1", "ddsrmi " + own_version + " 1 1 M::I",
                    "ddsrmi " + own_version + "  1 1 M::I s", "ddsrmi " + own_version + " x 1 M::I s",
                    "ddsrmi " + own_version + " 1x 1 M::I s", "ddsrmi " + own_version + " -1 1 M::I s",
                    "ddsrmi " + own_version + " +1 1 M::I s", "ddsrmi " + own_version + " 0x1 1 M::I s",
                    "ddsrmi " + own_version + " 18446744073709551616 1 M::I s",
                    "ddsrmi " + own_version + " 1 2147483648 M::I s",
                    "ddsrmi " + own_version + " 1 1.5 M::I s",
                    "ddsrmi " + own_version + std::string(" 1\0 1 M::I s", 12), "ddsrmi 1 1 1 M::I s",
                    "ddsrmi 99 1 1 M::I s", "ddsrmi -2 1 1 M::I s", "ddsrmi 4294967298 1 1 M::I s",
                    std::string(100'000, 'd'), std::string(100'000, ' ')));

TEST(AnnouncementText, tells_its_wire_version_whichever_that_is)
{
    EXPECT_EQ(Announcement::version_of("ddsrmi 1 whatever"), 1U);
    EXPECT_EQ(Announcement::version_of("ddsrmi 4711 "), 4711U);
    EXPECT_EQ(Announcement::version_of(Announcement{1, 2, "M::I", "s"}.to_text()),
              org::opensplice::DDS_RMI::wire_version);
}

TEST(AnnouncementText, has_no_wire_version_when_it_is_none)
{
    for (const char* const text : {"", "ddsrmi", "ddsrmi x ", "ddsrmi 1", "other 1 "})
        EXPECT_FALSE(Announcement::version_of(text)) << text;
}

} // namespace
