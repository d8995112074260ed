// SPDX-License-Identifier: Apache-2.0
#include "texts/key_values.h"

#include <gtest/gtest.h>

#include <string>

#include "contract/network_limits.h"
#include "contract/reply.h"

using varnel::Failure;
using varnel::KeyValues;
using varnel::Refusal;

namespace {

int refusal_of(const std::string& text)
{
    try {
        KeyValues::parse(text);
        return 0;
    } catch (const Refusal& refusal) {
        return refusal.reply().value;
    }
}

std::string pairs(std::size_t number)
{
    std::string text;
    for (std::size_t i = 0; i < number; ++i)
        text += "k" + std::to_string(i) + "=v;";
    return text;
}

constexpr int malformed = static_cast<int>(Failure::malformed_text);
constexpr int too_long = static_cast<int>(Failure::text_too_long);

} // namespace

TEST(KeyValues, keep_the_order_in_which_they_were_given)
{
    const KeyValues values = KeyValues::parse("power=low; interval=30");

    EXPECT_EQ(values.size(), 2u);
    EXPECT_EQ(values.text(), "power=low; interval=30");
}

TEST(KeyValues, are_separated_by_commas_as_well_as_semicolons)
{
    EXPECT_EQ(KeyValues::parse("a=1,b=2;c=3").text(), "a=1; b=2; c=3");
}

TEST(KeyValues, do_not_mind_blanks_and_separators_to_spare)
{
    EXPECT_EQ(KeyValues::parse(" ; a = 1 ,, \tb=two words \n; ").text(), "a=1; b=two words");
}

TEST(KeyValues, are_none_unless_given)
{
    EXPECT_EQ(KeyValues().size(), 0u);
    EXPECT_EQ(KeyValues().text(), "");
}

class MalformedKeyValues : public testing::TestWithParam<std::string>
{
};

TEST_P(MalformedKeyValues, are_refused)
{
    EXPECT_EQ(refusal_of(GetParam()), malformed);
}

INSTANTIATE_TEST_SUITE_P(Texts, MalformedKeyValues,
                         testing::Values("", " ", ";,;", "a", "a=", "=1", "=", "a=1=2", "a=1;b", "1a=1",
                                         "a b=1", "a=1;a=2", "a=\x01", "a=caf\xc3\xa9", "\xff=1", "a=1\nb=2",
                                         std::string("a=1\0", 4)));

TEST(KeyValues, hold_keys_and_values_up_to_their_limits)
{
    const std::string key(varnel::limits::key_length, 'k');
    const std::string value(varnel::limits::value_length, 'v');

    EXPECT_EQ(KeyValues::parse(key + "=" + value).text(), key + "=" + value);
    EXPECT_EQ(refusal_of(key + "k=" + value), malformed);
    EXPECT_EQ(refusal_of(key + "=" + value + "v"), malformed);
}

TEST(KeyValues, are_limited_in_number)
{
    EXPECT_EQ(KeyValues::parse(pairs(varnel::limits::pairs)).size(), varnel::limits::pairs);
    EXPECT_EQ(refusal_of(pairs(varnel::limits::pairs + 1)), malformed);
}

TEST(KeyValues, are_limited_in_the_length_of_their_text)
{
    const std::string longest = "a=1" + std::string(varnel::limits::key_values_length - 3, ' ');

    EXPECT_EQ(refusal_of(longest), 0);
    EXPECT_EQ(refusal_of(longest + " "), too_long);
}
