// SPDX-License-Identifier: Apache-2.0
#include "dds/path_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using org::opensplice::DDS_RMI::is_path_name;

constexpr dds_guid_t participant{{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0xc1, 0xfe, 0xff}};
const std::string of_participant = "000102030405060708090a0b0cc1feff-";

TEST(PathName, is_taken_from_the_participant_that_has_made_it)
{
    EXPECT_TRUE(is_path_name(of_participant + "1", participant));
    EXPECT_TRUE(is_path_name(of_participant + "4294967295", participant));
}

TEST(PathName, is_not_taken_from_a_participant_that_has_copied_it)
{
    dds_guid_t other = participant;
    other.v[11] = 0;

    EXPECT_FALSE(is_path_name(of_participant + "1", other));
}

TEST(PathName, is_nothing_else)
{
    for (const std::string& name :
         {std::string(), std::string("*"), of_participant, of_participant + "*", of_participant + "1*",
          of_participant + "12345678901", "x" + of_participant})
        EXPECT_FALSE(is_path_name(name, participant)) << name;
}

} // namespace
