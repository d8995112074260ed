// SPDX-License-Identifier: Apache-2.0
#include "texts/mac_address.h"

#include <gtest/gtest.h>

#include <string>

using varnel::MacAddress;

class WellFormedMacAddress : public testing::TestWithParam<std::string>
{
};

TEST_P(WellFormedMacAddress, is_read_to_the_same_address)
{
    const auto address = MacAddress::parse(GetParam());

    ASSERT_TRUE(address);
    EXPECT_EQ(address->text(), "00:1A:2B:3C:4D:EF");
}

INSTANTIATE_TEST_SUITE_P(Forms, WellFormedMacAddress,
                         testing::Values("00:1A:2B:3C:4D:EF", "00:1a:2b:3c:4d:ef", "00-1A-2B-3C-4D-EF",
                                         "00-1a-2B-3c-4D-eF", "001A2B3C4DEF", "001a2b3c4def"));

class MalformedMacAddress : public testing::TestWithParam<std::string>
{
};

TEST_P(MalformedMacAddress, is_refused)
{
    EXPECT_FALSE(MacAddress::parse(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Texts, MalformedMacAddress,
                         testing::Values("", "0", "00:1A:2B:3C:4D", "00:1A:2B:3C:4D:E", "00:1A:2B:3C:4D:EF:",
                                         "00:1A:2B:3C:4D:EF:01", "00:1A:2B:3C:4D-EF", "00.1A.2B.3C.4D.EF",
                                         "00:1A:2B:3C:4D:EG", "0:1A:2B:3C:4D:EFF", " 00:1A:2B:3C:4D:EF",
                                         "001A2B3C4DE", "001A2B3C4DEG", "001A2B3C4DEF0", "00:00:00:00:00:00",
                                         "FF:FF:FF:FF:FF:FF", std::string("00:1A:2B:3C:4D\0EF", 17)));

TEST(MacAddress, has_an_order_that_agrees_with_equality)
{
    const auto low = *MacAddress::parse("000000000001");
    const auto high = *MacAddress::parse("800000000000");

    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low == high);
    EXPECT_TRUE(low == *MacAddress::parse("00:00:00:00:00:01"));
}
