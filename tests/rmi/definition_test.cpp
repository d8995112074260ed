// SPDX-License-Identifier: Apache-2.0
#include "wire/definition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using org::opensplice::DDS_RMI::compare;
using org::opensplice::DDS_RMI::InterfaceInfo;
using org::opensplice::DDS_RMI::OperationInfo;
using org::opensplice::DDS_RMI::OwnDefinition;
using org::opensplice::DDS_RMI::unknown_to;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr OperationInfo operations[] = {
    {"get", "long get(long)", 1}, {"set", "void set(long, string)", 2}, {"reset", "void reset()", 3}};
constexpr InterfaceInfo ours{"M::I", "request", "reply", operations, 3};

/// What the other side says that its operations are.
class Theirs
{
public:
    explicit Theirs(std::vector<std::string> signatures) : m_signatures(std::move(signatures))
    {
        for (std::string& signature : m_signatures)
            m_pointers.push_back(signature.data());
    }
    DDS_RMI_Definition definition()
    {
        DDS_RMI_Definition theirs{};
        theirs.server_api._buffer = m_pointers.data();
        theirs.server_api._length = static_cast<std::uint32_t>(m_pointers.size());
        return theirs;
    }

private:
    std::vector<std::string> m_signatures;
    std::vector<char*> m_pointers;
};

std::vector<bool> in_common_with(const std::vector<std::string>& signatures)
{
    return compare(ours, Theirs(signatures).definition()).in_common;
}
std::vector<std::string> missing_in(const std::vector<std::string>& signatures)
{
    return compare(ours, Theirs(signatures).definition()).missing;
}
std::vector<std::string> unknown_in(const std::vector<std::string>& signatures)
{
    return unknown_to(ours, Theirs(signatures).definition());
}

TEST(OwnDefinition, names_all_operations)
{
    const OwnDefinition own(ours);
    const DDS_RMI_Definition message = own.message();

    EXPECT_STREQ(message.server_class, "M::I");
    ASSERT_EQ(message.server_api._length, 3U);
    EXPECT_STREQ(message.server_api._buffer[1], "void set(long, string)");
    EXPECT_THAT(compare(ours, message).missing, IsEmpty());
    EXPECT_THAT(unknown_to(ours, message), IsEmpty());
}

TEST(Interfaces, may_have_their_operations_in_any_order)
{
    const std::vector<std::string> theirs{"void reset()", "long get(long)", "void set(long, string)"};

    EXPECT_THAT(in_common_with(theirs), ElementsAre(true, true, true));
    EXPECT_THAT(missing_in(theirs), IsEmpty());
    EXPECT_THAT(unknown_in(theirs), IsEmpty());
}

TEST(Interfaces, differ_where_the_other_side_has_more)
{
    const std::vector<std::string> theirs{"long get(long)", "long get_all()", "void set(long, string)",
                                          "void reset()"};

    EXPECT_THAT(in_common_with(theirs), ElementsAre(true, true, true));
    EXPECT_THAT(unknown_in(theirs), ElementsAre("'long get_all()'"));
}

TEST(Interfaces, differ_where_the_other_side_has_less)
{
    const std::vector<std::string> theirs{"long get(long)", "void reset()"};

    EXPECT_THAT(in_common_with(theirs), ElementsAre(true, false, true));
    EXPECT_THAT(missing_in(theirs), ElementsAre("'void set(long, string)'"));
    EXPECT_THAT(unknown_in(theirs), IsEmpty());
}

TEST(Interfaces, differ_where_types_have_changed)
{
    const std::vector<std::string> theirs{"long get(string)", "void set(long, string)", "long reset()"};

    EXPECT_THAT(in_common_with(theirs), ElementsAre(false, true, false));
    EXPECT_THAT(missing_in(theirs), ElementsAre("'long get(long)' (there: 'long get(string)')",
                                                "'void reset()' (there: 'long reset()')"));
    EXPECT_THAT(unknown_in(theirs), ElementsAre("'long get(string)' (here: 'long get(long)')",
                                                "'long reset()' (here: 'void reset()')"));
}

TEST(Interfaces, have_nothing_in_common_with_one_that_says_nothing)
{
    EXPECT_THAT(in_common_with({}), ElementsAre(false, false, false));
    EXPECT_THAT(unknown_in({}), IsEmpty());
}

TEST(Interfaces, differ_in_whatever_is_no_signature)
{
    const std::vector<std::string> odd{
        "", " ", "(", ")", "get", "get(", " get(", "long get", "long get(long", "a b c("};

    EXPECT_THAT(in_common_with(odd), ElementsAre(false, false, false));
    EXPECT_EQ(unknown_in(odd).size(), odd.size());
}

TEST(Interfaces, tell_of_others_signatures_in_short_and_printable_words)
{
    const auto told = unknown_in({"void \x1b[2J\n\x7f\xff()", "void " + std::string(100'000, 'x') + "()"});

    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0], "'void .[2J...()'");
    EXPECT_LT(told[1].size(), 400U);
}

} // namespace
