// SPDX-License-Identifier: Apache-2.0
#include "json/json_reader.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using strict_json::json_text;
using strict_json::JsonSyntaxError;
using strict_json::parse_json;

constexpr int depth = 4;

std::string with_nul(const char* before, const char* after)
{
    return std::string(before) + '\0' + after;
}

std::string reparsed(const std::string& text)
{
    return json_text(parse_json(text, depth).get());
}

/// The cause for which `text` is refused; empty when it is taken.
std::string cause_of_refusal(const std::string& text)
{
    try {
        parse_json(text, depth);
        return "";
    } catch (const JsonSyntaxError& error) {
        return error.what();
    }
}

class KeptText : public testing::TestWithParam<const char*>
{
};

TEST_P(KeptText, is_the_same_after_parsing_and_writing)
{
    EXPECT_EQ(reparsed(GetParam()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(json_reader, KeptText,
                         testing::Values("0", "-1", "1.0", "1.50", "1E5", "-0.25e-7", "9223372036854775807",
                                         "-9223372036854775808", "18446744073709551615", "null", "true",
                                         "false", R"("")", R"("a/b")", R"("\u0000")", R"("a\u0000b")",
                                         "\"\xf0\x9f\x98\x80\"", "\"\xc3\xa4\"", R"("\"\\")", "[]", "{}",
                                         "[[[[]]]]", R"({"a":[1,{"b":2}]})", R"(["N","I",":"])"));

class RefusedText : public testing::TestWithParam<std::string>
{
};

TEST_P(RefusedText, is_no_json)
{
    EXPECT_THROW(parse_json(GetParam(), depth), JsonSyntaxError);
}

INSTANTIATE_TEST_SUITE_P(json_reader, RefusedText,
                         testing::Values("", " ", "{", "[1,]", R"({"a":1,})", "{a:1}", "'a'", "/**/1", "01",
                                         "-01", "+1", ".5", "1.", "1.e5", "1e", "1e+", "-", "--1", "1-",
                                         "0x10", "NaN", "nan", "Infinity", "-Infinity", "tRue", "True", "nul",
                                         "{} {}", "{}x", "[1 2]", "[1]]", R"("abc)", R"("abc\")", R"("\x")",
                                         R"("\u12")", "\"a\tb\"", "\"a\nb\"", "\xef\xbb\xbf{}", "[\v1]",
                                         with_nul("123", ""), with_nul("{}", "x"), with_nul("{", "}"),
                                         "\"" + with_nul("a", "b\"")));

class RefusedUtf8 : public testing::TestWithParam<const char*>
{
};

TEST_P(RefusedUtf8, is_told_with_its_place)
{
    EXPECT_EQ(cause_of_refusal('"' + std::string("ab") + GetParam() + '"'), "invalid UTF-8 at byte 3");
}

// A stray continuation, overlong forms, a surrogate, beyond U+10FFFF, five bytes, cut short.
INSTANTIATE_TEST_SUITE_P(json_reader, RefusedUtf8,
                         testing::Values("\x80", "\xff", "\xc0\x80", "\xc1\xbf", "\xe0\x80\x80",
                                         "\xed\xa0\x80", "\xf0\x80\x80\x80", "\xf4\x90\x80\x80",
                                         "\xf8\x88\x80\x80\x80", "\xc3", "\xe2\x82", "\xf0\x9f\x98"));

TEST(json_reader, takes_nesting_up_to_the_limit_only)
{
    EXPECT_EQ(cause_of_refusal("[[[[1]]]]"), "");
    EXPECT_THAT(cause_of_refusal("[[[[[1]]]]]"), testing::StartsWith("nesting too deep"));
    EXPECT_THAT(cause_of_refusal(R"([[[[{"a":1}]]]])"), testing::StartsWith("nesting too deep"));
    EXPECT_THAT(cause_of_refusal("[[[[[]]]]]"), testing::StartsWith("nesting too deep"))
        << "though it is empty";
}

TEST(json_reader, refuses_integers_that_it_could_not_keep)
{
    EXPECT_EQ(cause_of_refusal("[18446744073709551616]"), "integer beyond 64 bits at byte 1");
    EXPECT_EQ(cause_of_refusal("-9223372036854775809"), "integer beyond 64 bits at byte 0");
}

TEST(json_reader, refuses_an_escaped_nul_in_a_member_name_because_the_name_would_be_cut_short)
{
    EXPECT_THAT(cause_of_refusal(R"({"method\u0000x" : 1})"),
                testing::StartsWith("NUL character in a member name"));
    EXPECT_EQ(cause_of_refusal(R"({"x\\u0000":1})"), "");
}

TEST(json_reader, refuses_half_a_surrogate_pair)
{
    for (const char* text : {R"("\ud800")", R"("\udc00")", R"("\ud800x")", R"({"\udfff":1})"})
        EXPECT_NE(cause_of_refusal(text), "") << text;
    EXPECT_EQ(reparsed(R"("\ud83d\ude00")"), "\"\xf0\x9f\x98\x80\"");
}

TEST(json_reader, lets_blanks_stand_around_the_text)
{
    EXPECT_EQ(reparsed(" \t\r\n{ } \r\n"), "{}");
}

TEST(json_reader, names_the_byte_of_a_mistake)
{
    EXPECT_EQ(cause_of_refusal(R"({"a":x})"), "Invalid value at byte 5");
}

} // namespace
