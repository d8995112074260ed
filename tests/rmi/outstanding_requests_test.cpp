// SPDX-License-Identifier: Apache-2.0
#include "client/outstanding_requests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace {

using org::opensplice::DDS_RMI::Clock;
using org::opensplice::DDS_RMI::OutstandingRequest;
using org::opensplice::DDS_RMI::OutstandingRequests;
using testing::ElementsAre;
using testing::IsEmpty;

const Clock::time_point start = Clock::now();

Clock::time_point at(int seconds)
{
    return start + std::chrono::seconds(seconds);
}

/// The operation's number tells requests apart.
OutstandingRequest request(std::size_t operation, Clock::time_point deadline)
{
    return {{}, operation, deadline};
}

std::vector<std::size_t> operations_of(const std::vector<OutstandingRequest>& requests)
{
    std::vector<std::size_t> operations;
    for (const OutstandingRequest& one : requests)
        operations.push_back(one.operation);
    return operations;
}

TEST(OutstandingRequests, are_taken_once_each)
{
    OutstandingRequests outstanding;
    outstanding.add(1, request(11, at(1)));
    outstanding.add(2, request(12, at(2)));

    const auto taken = outstanding.take(1);

    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->operation, 11U);
    EXPECT_FALSE(outstanding.take(1));
    EXPECT_TRUE(outstanding.take(2));
    EXPECT_TRUE(outstanding.empty());
}

TEST(OutstandingRequests, are_not_found_under_other_numbers)
{
    OutstandingRequests outstanding;
    outstanding.add(5, request(1, at(1)));

    EXPECT_FALSE(outstanding.take(0));
    EXPECT_FALSE(outstanding.take(6));
    EXPECT_FALSE(outstanding.empty());
}

TEST(OutstandingRequests, expire_in_the_order_of_their_deadlines)
{
    OutstandingRequests outstanding;
    outstanding.add(1, request(1, at(30)));
    outstanding.add(2, request(2, at(10)));
    outstanding.add(3, request(3, at(20)));
    outstanding.add(4, request(4, at(10)));

    EXPECT_THAT(operations_of(outstanding.take_expired(at(9))), IsEmpty());
    EXPECT_THAT(operations_of(outstanding.take_expired(at(20))), ElementsAre(2, 4, 3));
    EXPECT_THAT(operations_of(outstanding.take_all()), ElementsAre(1));
    EXPECT_TRUE(outstanding.empty());
}

TEST(OutstandingRequests, know_their_first_deadline)
{
    OutstandingRequests outstanding;
    EXPECT_EQ(outstanding.first_deadline(), Clock::time_point::max());

    outstanding.add(1, request(1, at(30)));
    outstanding.add(2, request(2, at(10)));
    EXPECT_EQ(outstanding.first_deadline(), at(10));

    outstanding.take(2);
    EXPECT_EQ(outstanding.first_deadline(), at(30));
}

TEST(OutstandingRequests, that_never_expire_are_taken_with_all)
{
    OutstandingRequests outstanding;
    outstanding.add(1, request(1, Clock::time_point::max()));

    EXPECT_THAT(operations_of(outstanding.take_all()), ElementsAre(1));
}

} // namespace
