// SPDX-License-Identifier: Apache-2.0
#include "server/admission.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using org::opensplice::DDS_RMI::Admission;
using org::opensplice::DDS_RMI::RoomUsed;
using Accounts = Admission::Accounts;

constexpr RoomUsed total{12'800, 1'280'000};
constexpr std::uint64_t cost = 100;
constexpr RoomUsed everything{std::numeric_limits<std::uint64_t>::max(),
                              std::numeric_limits<std::uint64_t>::max()};

class AdmissionTest : public testing::Test
{
protected:
    bool arrives(Accounts& accounts, std::uint64_t bytes = cost)
    {
        return admission.arrived(accounts, bytes, should_tell);
    }
    /// Fills what the session may have, as its client would that always sends what is granted.
    std::uint64_t fill(Accounts& accounts)
    {
        std::uint64_t count = 0;
        while (accounts.requests.arrived < accounts.requests.granted &&
               accounts.bytes.arrived + cost <= accounts.bytes.granted) {
            EXPECT_TRUE(arrives(accounts));
            ++count;
        }
        return count;
    }

    Admission admission{total};
    bool should_tell = false;
};

TEST_F(AdmissionTest, promises_a_new_session_room_before_anything_comes)
{
    Accounts session;

    admission.open(session);

    EXPECT_EQ(session.granted().requests, 100U);
    EXPECT_EQ(session.granted().bytes, 10'000U);
}

TEST_F(AdmissionTest, takes_what_is_granted_to_the_last_byte_and_nothing_beyond)
{
    Accounts exact;
    Accounts greedy;
    admission.open(exact);
    admission.open(greedy);

    EXPECT_TRUE(arrives(exact, exact.granted().bytes));
    EXPECT_FALSE(arrives(greedy, greedy.granted().bytes + 1));
}

TEST_F(AdmissionTest, takes_endlessly_what_is_released_again)
{
    Accounts session;
    admission.open(session);

    for (int i = 0; i < 100'000; ++i) {
        ASSERT_TRUE(arrives(session)) << i;
        admission.release(session, cost);
    }
}

TEST_F(AdmissionTest, grants_more_as_requests_come_up_to_a_quarter_of_all)
{
    Accounts session;
    admission.open(session);

    EXPECT_EQ(fill(session), total.requests / 4);
}

TEST_F(AdmissionTest, tells_of_room_only_when_there_is_more)
{
    Accounts session;
    admission.open(session);

    for (int i = 0; i < 1000; ++i) {
        const RoomUsed before = session.granted();
        ASSERT_TRUE(arrives(session));
        const RoomUsed after = session.granted();
        EXPECT_EQ(should_tell, after.requests > before.requests || after.bytes > before.bytes);
    }
}

TEST_F(AdmissionTest, gives_those_who_come_late_room_beside_a_greedy_one)
{
    Accounts greedy;
    Accounts late;
    admission.open(greedy);
    admission.want(greedy, everything);
    fill(greedy);

    admission.open(late);

    EXPECT_GT(late.granted().requests, 0U);
    EXPECT_TRUE(arrives(late));
}

TEST_F(AdmissionTest, grants_what_is_wanted_when_there_is_room)
{
    Accounts session;
    admission.open(session);
    const RoomUsed wanted{2, total.bytes / 4};

    EXPECT_TRUE(admission.want(session, wanted));

    EXPECT_GE(session.granted().bytes, wanted.bytes);
}

TEST_F(AdmissionTest, grants_what_is_wanted_once_others_have_left_room)
{
    std::array<Accounts, 4> others;
    for (Accounts& one : others) {
        admission.open(one);
        admission.want(one, everything);
    }
    Accounts waiting;
    admission.open(waiting);
    EXPECT_FALSE(admission.want(waiting, {1, cost}));

    admission.close(others.front());

    EXPECT_TRUE(admission.is_satisfied(waiting));
    EXPECT_TRUE(arrives(waiting));
}

TEST_F(AdmissionTest, has_nothing_more_to_give_a_session_that_has_its_quarter)
{
    Accounts session;
    admission.open(session);

    EXPECT_TRUE(admission.want(session, everything)) << "nothing that others do could give it more";

    EXPECT_EQ(session.granted().bytes, admission.per_session().bytes);
}

TEST_F(AdmissionTest, has_all_its_room_again_when_all_sessions_are_closed)
{
    Accounts first;
    admission.open(first);
    const RoomUsed at_first = first.granted();
    fill(first);
    admission.release(first, cost);
    std::array<Accounts, 8> others;
    for (Accounts& one : others) {
        admission.open(one);
        admission.want(one, everything);
    }

    for (Accounts& one : others)
        admission.close(one);
    admission.close(first);

    Accounts last;
    admission.open(last);
    EXPECT_EQ(last.granted().requests, at_first.requests);
    EXPECT_EQ(last.granted().bytes, at_first.bytes);
}

TEST_F(AdmissionTest, never_promises_more_than_there_is_whatever_clients_do)
{
    std::array<Accounts, 10> sessions;
    for (Accounts& one : sessions)
        admission.open(one);
    std::mt19937 random(1);

    for (int i = 0; i < 100'000; ++i) {
        Accounts& one = sessions[random() % sessions.size()];
        const std::uint64_t taken = one.requests.arrived - one.requests.released;
        const auto deed = random() % 100;
        if (deed < 50 && one.requests.arrived < one.requests.granted &&
            one.bytes.arrived + cost <= one.bytes.granted)
            ASSERT_TRUE(arrives(one));
        else if (deed < 80 && taken > 0)
            admission.release(one, cost);
        else if (deed < 98)
            admission.want(
                one, {one.requests.arrived + random() % 10'000, one.bytes.arrived + random() % 1'000'000});
        else {
            admission.close(one);
            admission.open(one);
        }
        RoomUsed promised{0, 0};
        for (const Accounts& each : sessions) {
            promised.requests += each.requests.granted - each.requests.released;
            promised.bytes += each.bytes.granted - each.bytes.released;
        }
        ASSERT_LE(promised.requests, total.requests) << i;
        ASSERT_LE(promised.bytes, total.bytes) << i;
    }
}

} // namespace
