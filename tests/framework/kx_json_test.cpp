// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/data/KX_JSON.h"

#include <gtest/gtest.h>
#include <json-c/json_object.h>

#include <climits>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "parse_json.h"

namespace {

using zeb::api::data::KX_JSON;
using namespace std::string_literals;

/// What each getter makes of one member.
struct Reading
{
    const char* name;
    std::string value;
    std::string as_object;
    std::string as_string;
    int as_int;
};

void PrintTo(const Reading& reading, std::ostream* out)
{
    *out << reading.name;
}

class KxJsonGetters : public testing::TestWithParam<Reading>
{
protected:
    const KX_JSON request = parse_json("{\"key\":" + GetParam().value + "}");
};

TEST_P(KxJsonGetters, give_the_member_as_a_value)
{
    EXPECT_EQ(request.get_json_object("key").to_string(), GetParam().as_object);
}

TEST_P(KxJsonGetters, give_the_member_as_text)
{
    EXPECT_EQ(request.get_json_string("key"), GetParam().as_string);
}

TEST_P(KxJsonGetters, give_the_member_as_an_integer)
{
    EXPECT_EQ(request.get_json_int("key"), GetParam().as_int);
}

const Reading readings[] = {
    {"null_value", "null", "null", "", 0},
    {"boolean_true", "true", "true", "true", 1},
    {"boolean_false", "false", "false", "false", 0},
    {"zero", "0", "0", "0", 0},
    {"negative_number", "-7", "-7", "-7", -7},
    {"largest_int", "2147483647", "2147483647", "2147483647", INT_MAX},
    {"smallest_int", "-2147483648", "-2147483648", "-2147483648", INT_MIN},
    {"above_int", "2147483648", "2147483648", "2147483648", INT_MAX},
    {"below_int", "-2147483649", "-2147483649", "-2147483649", INT_MIN},
    {"above_signed_64_bits", "18446744073709551615", "18446744073709551615", "18446744073709551615", INT_MAX},
    {"fraction", "3.75", "3.75", "3.75", 3},
    {"negative_fraction", "-3.75", "-3.75", "-3.75", -3},
    {"double_above_int", "1e300", "1e300", "1e300", INT_MAX},
    {"double_below_int", "-1e300", "-1e300", "-1e300", INT_MIN},
    {"empty_text", R"("")", R"("")", "", 0},
    {"text", R"("aa:bb")", R"("aa:bb")", "aa:bb", 0},
    {"text_with_escapes", R"("a\"b\n/")", R"("a\"b\n/")", "a\"b\n/", 0},
    {"text_with_nul", R"("a\u0000b")", R"("a\u0000b")", "a\0b"s, 0},
    {"text_beyond_ascii", R"("\u00e9")", "\"\u00e9\"", "\u00e9", 0},
    {"numeric_text", R"("42")", R"("42")", "42", 42},
    {"negative_numeric_text", R"("-42")", R"("-42")", "-42", -42},
    {"numeric_text_with_plus", R"("+42")", R"("+42")", "+42", 42},
    {"numeric_text_after_blanks", R"(" \t42")", R"(" \t42")", " \t42", 42},
    {"numeric_text_with_fraction", R"("42.9")", R"("42.9")", "42.9", 42},
    {"numeric_text_above_int", R"("99999999999999999999")", R"("99999999999999999999")",
     "99999999999999999999", INT_MAX},
    {"numeric_text_below_int", R"("-99999999999999999999")", R"("-99999999999999999999")",
     "-99999999999999999999", INT_MIN},
    {"number_with_unit", R"("42s")", R"("42s")", "42s", 0},
    {"number_with_nul", R"("42\u0000")", R"("42\u0000")", "42\0"s, 0},
    {"hexadecimal_text", R"("0x10")", R"("0x10")", "0x10", 0},
    {"two_signs", R"("+-4")", R"("+-4")", "+-4", 0},
    {"blank_text", R"("  ")", R"("  ")", "  ", 0},
    {"array", R"([1, "a/b"])", R"([1,"a/b"])", R"([1,"a/b"])", 0},
    {"object", R"({"a": {"b": 1}})", R"({"a":{"b":1}})", R"({"a":{"b":1}})", 0},
};

INSTANTIATE_TEST_SUITE_P(of, KxJsonGetters, testing::ValuesIn(readings),
                         [](const auto& reading) { return reading.param.name; });

/// Values that have no member at all.
class KxJsonWithoutMembers : public testing::TestWithParam<const char*>
{
};

TEST_P(KxJsonWithoutMembers, gives_empty_answers)
{
    const KX_JSON value = parse_json(GetParam());

    EXPECT_EQ(value.get_json_object("key").get(), nullptr);
    EXPECT_EQ(value.get_json_string("key"), "");
    EXPECT_EQ(value.get_json_int("key"), 0);
    EXPECT_FALSE(value.has_key("key"));
}

INSTANTIATE_TEST_SUITE_P(of, KxJsonWithoutMembers,
                         testing::Values("{}", R"({"other":1})", "null", "true", "3", "3.5", R"("key")",
                                         R"(["key"])"));

TEST(KxJson, is_empty_when_default_constructed)
{
    const KX_JSON value;

    EXPECT_EQ(value.get(), nullptr);
    EXPECT_EQ(value.to_string(), "null");
    EXPECT_EQ(value.get_json_string("key"), "");
}

TEST(KxJson, is_empty_when_made_from_no_object)
{
    const KX_JSON value(static_cast<const json_object*>(nullptr));

    EXPECT_EQ(value.get(), nullptr);
}

TEST(KxJson, reads_not_a_number_as_0)
{
    const JsonReference object(json_object_new_object());
    json_object_object_add(object.get(), "key", json_object_new_double(NAN));

    EXPECT_EQ(KX_JSON(object.get()).get_json_int("key"), 0);
}

TEST(KxJson, reads_infinity_as_the_largest_integer)
{
    const JsonReference object(json_object_new_object());
    json_object_object_add(object.get(), "key", json_object_new_double(INFINITY));

    EXPECT_EQ(KX_JSON(object.get()).get_json_int("key"), INT_MAX);
}

/// Counts how often an object that a test watches is deleted.
class KxJsonReferences : public testing::Test
{
protected:
    JsonReference watched()
    {
        JsonReference object(json_object_new_object());
        json_object_set_userdata(object.get(), &m_deletions,
                                 [](json_object*, void* deletions) { ++*static_cast<int*>(deletions); });
        return object;
    }

    int m_deletions = 0;
};

TEST_F(KxJsonReferences, keep_the_object_after_the_caller_dropped_his)
{
    JsonReference object = watched();
    const KX_JSON value(object.get());

    object.reset();

    EXPECT_EQ(m_deletions, 0);
    EXPECT_EQ(value.to_string(), "{}");
}

TEST_F(KxJsonReferences, end_with_the_last_value)
{
    {
        const KX_JSON value(watched().get());
        KX_JSON assigned;
        assigned = value;
        const KX_JSON copied(assigned);
        KX_JSON moved(std::move(assigned));
        assigned = std::move(moved);
        EXPECT_EQ(assigned.get(), value.get());
        EXPECT_EQ(m_deletions, 0);
    }

    EXPECT_EQ(m_deletions, 1);
}

TEST_F(KxJsonReferences, survive_assignment_to_oneself)
{
    KX_JSON value(watched().get());
    const KX_JSON& same = value;

    value = same;

    EXPECT_EQ(m_deletions, 0);
    EXPECT_EQ(value.to_string(), "{}");
}

TEST_F(KxJsonReferences, are_dropped_when_another_value_is_assigned)
{
    KX_JSON value(watched().get());

    value = KX_JSON();

    EXPECT_EQ(m_deletions, 1);
}

TEST_F(KxJsonReferences, let_a_member_outlive_its_parent)
{
    KX_JSON member;
    {
        KX_JSON parent;
        parent.set_json_object("member", KX_JSON(watched().get()));
        member = parent.get_json_object("member");
    }

    EXPECT_EQ(m_deletions, 0);
    EXPECT_EQ(member.to_string(), "{}");
}

TEST_F(KxJsonReferences, are_released_when_a_member_is_refused)
{
    KX_JSON number = parse_json("3");

    EXPECT_THROW(number.set_json_object("key", KX_JSON(watched().get())), std::logic_error);

    EXPECT_EQ(m_deletions, 1);
}

TEST(KxJson, copies_share_the_object)
{
    KX_JSON value = parse_json("{}");
    const KX_JSON copy = value;

    value.set_json_int("key", 1);

    EXPECT_EQ(copy.get_json_int("key"), 1);
}

TEST(KxJson, deep_copies_share_nothing)
{
    KX_JSON value = parse_json(R"({"a":{"b":1.50}})");
    const KX_JSON copy = value.deep_copy();

    value.get_json_object("a").set_json_int("b", 2);

    EXPECT_EQ(copy.to_string(), R"({"a":{"b":1.50}})");
}

TEST(KxJson, has_an_empty_deep_copy_when_empty)
{
    EXPECT_EQ(KX_JSON().deep_copy().get(), nullptr);
}

TEST(KxJson, becomes_an_object_when_a_member_is_set)
{
    KX_JSON value;

    value.set_json_int("number", -3);
    value.set_json_string("text", "a\0b"s);
    value.set_json_object("nothing", KX_JSON());
    value.set_json_object("object", parse_json("[1]"));

    EXPECT_EQ(value.to_string(), R"({"number":-3,"text":"a\u0000b","nothing":null,"object":[1]})");
    EXPECT_TRUE(value.has_key("nothing"));
}

TEST(KxJson, replaces_a_member_that_is_set_again)
{
    KX_JSON value;
    value.set_json_int("key", 1);

    value.set_json_string("key", "two");

    EXPECT_EQ(value.to_string(), R"({"key":"two"})");
}

TEST(KxJson, takes_no_members_when_it_is_no_object)
{
    KX_JSON array = parse_json("[]");

    EXPECT_THROW(array.set_json_int("key", 1), std::logic_error);
    EXPECT_THROW(array.set_json_string("key", "1"), std::logic_error);
    EXPECT_EQ(array.to_string(), "[]");
}

TEST(KxJson, cannot_be_a_member_of_itself)
{
    KX_JSON value = parse_json("{}");

    EXPECT_THROW(value.set_json_object("key", value), std::logic_error);
    EXPECT_EQ(value.to_string(), "{}");
}

} // namespace
