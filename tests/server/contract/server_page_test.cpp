// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "VarnelRMI_operations.h"

#include "contract/network_limits.h"
#include "contract/reply.h"
#include "network/node_type.h"

using testing::HasSubstr;

namespace {

std::string page()
{
    std::ifstream file(SERVER_PAGE);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string limit_row(const std::string& what, std::size_t limit)
{
    return "| " + what + " | " + std::to_string(limit) + " |";
}

} // namespace

TEST(ServerPage, lists_every_operation)
{
#define EXPECT_LISTED(op, ...) EXPECT_THAT(page(), HasSubstr("| `" #op "("));
    FOR_EVERY_OPERATION(EXPECT_LISTED)
#undef EXPECT_LISTED
}

TEST(ServerPage, lists_every_failure_with_its_name_and_meaning)
{
    for (const varnel::FailureInfo& info : varnel::failures())
        EXPECT_THAT(page(), HasSubstr("| " + std::to_string(static_cast<int>(info.failure)) + " | `" +
                                      info.name + "` | " + info.meaning + " |"));
}

TEST(ServerPage, lists_every_named_type_with_its_readings)
{
    for (const varnel::NodeTypeInfo& type : varnel::node_types())
        EXPECT_THAT(page(), HasSubstr("| " + std::to_string(type.code) + " | " + type.name + " | `" +
                                      type.readings + "` |"));
}

TEST(ServerPage, tells_the_limits)
{
    using namespace varnel;

    EXPECT_THAT(page(), HasSubstr(limit_row("nodes of the network", limits::nodes)));
    EXPECT_THAT(page(), HasSubstr(limit_row("bytes of an address list", limits::address_list_length)));
    EXPECT_THAT(page(), HasSubstr(limit_row("bytes of a configuration or of sensor data",
                                            limits::key_values_length)));
    EXPECT_THAT(page(), HasSubstr(limit_row("pairs in it", limits::pairs)));
    EXPECT_THAT(page(), HasSubstr(limit_row("characters of a key", limits::key_length)));
    EXPECT_THAT(page(), HasSubstr(limit_row("characters of a value", limits::value_length)));
    EXPECT_THAT(page(), HasSubstr(limit_row("seconds of a duration",
                                            static_cast<std::size_t>(limits::longest_duration.count()))));
}

TEST(Failures, are_numbered_downwards_from_minus_one_without_a_gap)
{
    int expected = -1;
    for (const varnel::FailureInfo& info : varnel::failures())
        EXPECT_EQ(static_cast<int>(info.failure), expected--);
}

TEST(Failures, have_names_only_for_their_own_numbers)
{
    EXPECT_EQ(varnel::failure_name(-1), "malformed_address");
    EXPECT_EQ(varnel::failure_name(0), "");
    EXPECT_EQ(varnel::failure_name(-14), "");
}
