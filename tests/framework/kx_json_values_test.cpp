// SPDX-License-Identifier: Apache-2.0
// Numbers with fractions, booleans, arrays, texts that are parsed, iteration.
#include "zeb/api/data/KX_JSON.h"

#include <gmock/gmock.h>
#include <json-c/json_object.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>

#include "parse_json.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using zeb::api::data::KX_JSON;
using Type = KX_JSON::Type;

/// What each getter makes of one value.
struct Reading
{
    const char* name;
    const char* value;
    double as_double;
    std::int64_t as_int64;
    bool as_bool;
    Type type;
};

void PrintTo(const Reading& reading, std::ostream* out)
{
    *out << reading.name;
}

class KxJsonValues : public testing::TestWithParam<Reading>
{
protected:
    const KX_JSON value = KX_JSON::parse(GetParam().value);
    const KX_JSON request = KX_JSON::parse("{\"key\":" + std::string(GetParam().value) + "}");
};

TEST_P(KxJsonValues, are_read_as_numbers)
{
    EXPECT_EQ(value.as_double(), GetParam().as_double);
    EXPECT_EQ(request.get_json_double("key"), GetParam().as_double);
}

TEST_P(KxJsonValues, are_read_as_integers_of_64_bits)
{
    EXPECT_EQ(value.as_int64(), GetParam().as_int64);
    EXPECT_EQ(request.get_json_int64("key"), GetParam().as_int64);
}

TEST_P(KxJsonValues, are_read_as_booleans)
{
    EXPECT_EQ(value.as_bool(), GetParam().as_bool);
    EXPECT_EQ(request.get_json_bool("key"), GetParam().as_bool);
}

TEST_P(KxJsonValues, tell_what_they_are)
{
    EXPECT_EQ(value.type(), GetParam().type);
}

TEST_P(KxJsonValues, read_by_themselves_as_they_do_as_a_member)
{
    EXPECT_EQ(value.as_string(), request.get_json_string("key"));
    EXPECT_EQ(value.as_int(), request.get_json_int("key"));
}

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

const Reading readings[] = {
    {"null_value", "null", 0, 0, false, Type::null},
    {"boolean_true", "true", 1, 1, true, Type::boolean},
    {"boolean_false", "false", 0, 0, false, Type::boolean},
    {"zero", "0", 0, 0, false, Type::integer},
    {"zero_with_fraction", "0.0", 0, 0, false, Type::real},
    {"fraction", "21.5", 21.5, 21, true, Type::real},
    {"negative_fraction", "-0.25", -0.25, 0, true, Type::real},
    {"exponent", "25e-1", 2.5, 2, true, Type::real},
    {"beyond_int", "1763737200123", 1763737200123.0, 1763737200123, true, Type::integer},
    {"largest_64_bits", "9223372036854775807", 9223372036854775807.0, largest, true, Type::integer},
    {"smallest_64_bits", "-9223372036854775808", -9223372036854775808.0, smallest, true, Type::integer},
    {"above_signed_64_bits", "18446744073709551615", 18446744073709551615.0, largest, true, Type::integer},
    {"double_above_64_bits", "9223372036854775808.0", 9223372036854775808.0, largest, true, Type::real},
    {"double_below_64_bits", "-1e300", -1e300, smallest, true, Type::real},
    {"text_true", R"("true")", 0, 0, true, Type::string},
    {"text_false", R"("false")", 0, 0, false, Type::string},
    {"other_text", R"("yes")", 0, 0, false, Type::string},
    {"empty_text", R"("")", 0, 0, false, Type::string},
    {"numeric_text", R"("21.5")", 21.5, 21, false, Type::string},
    {"numeric_text_after_blanks_and_plus", R"(" +21.5")", 21.5, 21, false, Type::string},
    {"negative_numeric_text", R"("-21.")", -21, -21, false, Type::string},
    {"numeric_text_with_exponent", R"("2.5E+1")", 25, 0, false, Type::string},
    {"numeric_text_beyond_double", R"("1e400")", DBL_MAX, 0, false, Type::string},
    {"numeric_text_below_double", R"("-1e400")", -DBL_MAX, 0, false, Type::string},
    {"numeric_text_above_64_bits", R"("9223372036854775808")", 9223372036854775808.0, largest, false,
     Type::string},
    {"number_with_unit", R"("21.5 C")", 0, 0, false, Type::string},
    {"half_an_exponent", R"("2e")", 0, 0, false, Type::string},
    {"sign_alone", R"("-")", 0, 0, false, Type::string},
    {"fraction_alone", R"(".5")", 0, 0, false, Type::string},
    {"hexadecimal_text", R"("0x10")", 0, 0, false, Type::string},
    {"text_of_infinity", R"("inf")", 0, 0, false, Type::string},
    {"two_signs", R"("+-4")", 0, 0, false, Type::string},
    {"array", "[1]", 0, 0, false, Type::array},
    {"object", R"({"a":1})", 0, 0, false, Type::object},
};

INSTANTIATE_TEST_SUITE_P(of, KxJsonValues, testing::ValuesIn(readings),
                         [](const auto& reading) { return reading.param.name; });

TEST(KxJsonNumbers, that_are_not_finite_are_read_as_something_finite)
{
    const JsonReference not_a_number(json_object_new_double(NAN));
    const JsonReference infinity(json_object_new_double(-INFINITY));

    EXPECT_EQ(KX_JSON(not_a_number.get()).as_double(), 0);
    EXPECT_EQ(KX_JSON(not_a_number.get()).as_int64(), 0);
    EXPECT_FALSE(KX_JSON(not_a_number.get()).as_bool());
    EXPECT_EQ(KX_JSON(infinity.get()).as_double(), -DBL_MAX);
}

TEST(KxJsonNumbers, are_written_as_short_as_they_can_be)
{
    KX_JSON value;
    value.set_json_double("a", 0.1);
    value.set_json_double("b", 21);
    value.set_json_double("c", -1e300);
    value.set_json_int64("d", largest);
    value.set_json_bool("e", true);
    value.set_json_bool("f", false);

    EXPECT_EQ(value.to_string(),
              R"({"a":0.1,"b":21.0,"c":-1e+300,"d":9223372036854775807,"e":true,"f":false})");
    EXPECT_EQ(KX_JSON::parse(value.to_string()).get_json_double("a"), 0.1);
}

TEST(KxJsonNumbers, that_are_not_finite_cannot_be_set)
{
    KX_JSON value = KX_JSON::empty_object();

    EXPECT_THROW(value.set_json_double("key", NAN), std::domain_error);
    EXPECT_THROW(value.set_json_double("key", INFINITY), std::domain_error);
    EXPECT_EQ(value.to_string(), "{}");
}

TEST(KxJsonArrays, are_built_element_by_element)
{
    KX_JSON array;
    array.append_json_int(-1);
    array.append_json_int64(smallest);
    array.append_json_double(0.5);
    array.append_json_bool(true);
    array.append_json_bool(false);
    array.append_json_string("a\"b");
    array.append_json_object(KX_JSON());
    array.append_json_object(KX_JSON::empty_array());
    array.append_json_object(KX_JSON::empty_object());

    EXPECT_EQ(array.to_string(), R"([-1,-9223372036854775808,0.5,true,false,"a\"b",null,[],{}])");
    EXPECT_EQ(array.size(), 9U);
}

TEST(KxJsonArrays, are_gone_through_in_their_order)
{
    const KX_JSON array = KX_JSON::parse(R"(["kitchen", 2, null])");

    std::string seen;
    for (const KX_JSON& element : array.elements())
        seen += element.as_string() + ';';

    EXPECT_EQ(seen, "kitchen;2;;");
    EXPECT_EQ(array.element(1).as_int(), 2);
    EXPECT_EQ(array.element(3).get(), nullptr);
}

TEST(KxJsonArrays, may_be_changed_while_they_are_gone_through)
{
    KX_JSON array = KX_JSON::parse("[1,2]");

    for (const KX_JSON& element : array.elements())
        array.append_json_int(10 * element.as_int());

    EXPECT_EQ(array.to_string(), "[1,2,10,20]");
}

TEST(KxJsonArrays, are_no_objects)
{
    KX_JSON object = KX_JSON::empty_object();
    KX_JSON array = KX_JSON::empty_array();

    EXPECT_THROW(object.append_json_int(1), std::logic_error);
    EXPECT_THROW(array.set_json_int("key", 1), std::logic_error);
    EXPECT_THROW(array.append_json_object(array), std::logic_error);
    EXPECT_EQ(object.to_string(), "{}");
    EXPECT_EQ(array.to_string(), "[]");
}

TEST(KxJsonObjects, are_gone_through_member_by_member)
{
    const KX_JSON object = KX_JSON::parse(R"({"kitchen": 21.5, "attic": null})");

    std::string seen;
    for (const auto& member : object.members())
        seen += member.first + '=' + member.second.to_string() + ';';

    EXPECT_EQ(seen, "kitchen=21.5;attic=null;");
    EXPECT_EQ(object.size(), 2U);
}

TEST(KxJsonWithoutElements, gives_none)
{
    for (const char* const text : {"null", "3", R"("abc")", "true"}) {
        const KX_JSON value = KX_JSON::parse(text);

        EXPECT_EQ(value.size(), 0U) << text;
        EXPECT_THAT(value.elements(), IsEmpty()) << text;
        EXPECT_THAT(value.members(), IsEmpty()) << text;
        EXPECT_EQ(value.element(0).get(), nullptr) << text;
    }
    EXPECT_THAT(KX_JSON::parse(R"({"a":1})").elements(), IsEmpty());
    EXPECT_THAT(KX_JSON::parse("[1]").members(), IsEmpty());
}

TEST(KxJsonTexts, come_back_as_they_were)
{
    for (const char* const text : {"null", "1.50", R"({"a":[true,{"b":"c"}],"d":18446744073709551615})"})
        EXPECT_EQ(KX_JSON::parse(text).to_string(), text);
}

/// The message with which a text is refused.
std::string refusal_of(const std::string& text)
{
    try {
        KX_JSON::parse(text);
        return "";
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

TEST(KxJsonTexts, that_are_no_json_are_refused_with_the_byte)
{
    EXPECT_THAT(refusal_of(R"({"a":1,})"), HasSubstr("at byte 7"));
    for (const char* const text : {"", "NaN", "1.", "[1] 2", "'a'", "\"\xff\"", "99999999999999999999",
                                   R"({"a\u0000b":1})", "\"a\nb\""})
        EXPECT_THAT(refusal_of(text), HasSubstr("KX_JSON: not JSON: ")) << text;
}

TEST(KxJsonTexts, nest_no_deeper_than_is_wanted)
{
    EXPECT_EQ(KX_JSON::parse("[[1]]", 2).to_string(), "[[1]]");
    EXPECT_THROW(KX_JSON::parse("[[1]]", 1), std::invalid_argument);
}

} // namespace
