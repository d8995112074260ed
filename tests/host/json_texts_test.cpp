// SPDX-License-Identifier: Apache-2.0
// Texts that are JSON, that are not, and that a reader may take or refuse, each at every place of a request.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "jsonrpc/dispatcher.h"
#include "method_table.h"
#include "json/json_reader.h"

namespace {

using testing::HasSubstr;
using testing::Not;

const std::vector<std::string>& accepted()
{
    static const std::vector<std::string> texts = {
        "0",
        "-0",
        "1",
        "-1",
        "10",
        "123456789",
        "9223372036854775807",
        "-9223372036854775808",
        "18446744073709551615",
        "0.0",
        "-0.0",
        "0.1",
        "1.0",
        "1.5",
        "-1.25",
        "123.456",
        "0e0",
        "0E0",
        "0e+0",
        "0e-0",
        "1e1",
        "1E1",
        "1e+1",
        "1e-1",
        "1E+1",
        "1E-1",
        "1.5e3",
        "1.5E-3",
        "1e308",
        "-1e308",
        "1e-400",
        "5e-324",
        "2.2250738585072014e-308",
        "1.7976931348623157e308",
        "0.30000000000000004",
        "3.141592653589793238462643383279",
        "null",
        "true",
        "false",
        R"("")",
        R"("a")",
        R"(" ")",
        R"("abc")",
        R"("\"")",
        R"("\\")",
        R"("\/")",
        R"("/")",
        R"("\b")",
        R"("\f")",
        R"("\n")",
        R"("\r")",
        R"("\t")",
        R"("\u0041")",
        R"("\u00e9")",
        R"("\u20ac")",
        R"("\u20AC")",
        R"("\uD834\uDD1E")",
        R"("\ud834\udd1e")",
        R"("\uFFFF")",
        R"("\uFFFE")",
        R"("\uFDD0")",
        R"("\ue000")",
        R"("\u007f")",
        "\"\x7f\"",
        "\"\xc3\xa9\"",
        "\"\xe2\x82\xac\"",
        "\"\xf0\x9d\x84\x9e\"",
        "\"\xef\xbf\xbf\"",
        "\"\xf4\x8f\xbf\xbf\"",
        "\"\xc2\x80\"",
        "\"\xdf\xbf\"",
        "\"\xe0\xa0\x80\"",
        "\"\xed\x9f\xbf\"",
        "\"\xee\x80\x80\"",
        "\"\xf0\x90\x80\x80\"",
        "\"\xe2\x80\xa8\"",
        "\"\xe2\x80\xa9\"",
        "\"\xef\xbb\xbf\"",
        R"("\\u0000")",
        R"("\\\"")",
        R"("a\\\\b")",
        R"("'")",
        R"("{}[]:,")",
        R"("//")",
        R"("/* */")",
        R"("NaN")",
        "[]",
        "[ ]",
        "[\t\n\r ]",
        "[0]",
        "[null]",
        "[1,2]",
        "[1 , 2]",
        "[[]]",
        "[[],[]]",
        "[{}]",
        "[\"a\"]",
        "[true,false]",
        "[1,\"a\",null,{},[]]",
        "{}",
        "{ }",
        "{\n}",
        R"({"a":1})",
        R"({"a" : 1})",
        R"({ "a":1 })",
        R"({"a":1,"b":2})",
        R"({"":1})",
        R"({"a":{}})",
        R"({"a":[]})",
        R"({"a":null})",
        R"({"a":"b"})",
        R"({"\u0061":1})",
        R"({"a b":1})",
        "{\"\xc3\xa9\":1}",
        R"({"\"":1})",
        R"({"\\":1})",
        "[-0]",
        "[1e5]",
    };
    return texts;
}

const std::vector<std::string>& refused_as_they_stand()
{
    static const std::vector<std::string> texts = {
        "'a'",
        "{'a':1}",
        "{a:1}",
        "{1:1}",
        "{null:1}",
        "{[]:1}",
        R"({"a"})",
        R"({"a":})",
        R"({"a" 1})",
        R"({:1})",
        R"({"a":1,})",
        R"({,"a":1})",
        R"({"a":1,,"b":2})",
        R"({"a":1 "b":2})",
        R"({"a"::1})",
        R"({"a":1;"b":2})",
        R"({"a"=1})",
        R"({"a":1})"
        "}",
        "{",
        "}",
        R"({"a")",
        R"({"a":)",
        R"({"a":1)",
        R"({"a)",
        "[",
        "]",
        "[1",
        "[1,",
        "[,",
        "[,1]",
        "[1,]",
        "[1,,2]",
        "[1 2]",
        "[1;2]",
        "[1:2]",
        "[[]",
        "[]]",
        "[}",
        "{]",
        "[\"a]",
        "[1]x",
        "(1)",
        "<1>",
        "01",
        "-01",
        "00",
        "-00",
        "+1",
        "++1",
        "--1",
        "-",
        "+",
        ".",
        ".5",
        "-.5",
        "1.",
        "-1.",
        "1.e5",
        "1.e",
        "0.",
        "1e",
        "1E",
        "1e+",
        "1e-",
        "1e+-1",
        "1e1.5",
        "1.2.3",
        "1e1e1",
        "1_000",
        "1 000",
        "0x10",
        "0X10",
        "0b1",
        "0o7",
        "1f",
        "1d",
        "1L",
        "1n",
        "NaN",
        "nan",
        "-NaN",
        "+NaN",
        "Infinity",
        "-Infinity",
        "+Infinity",
        "infinity",
        "inf",
        "-inf",
        "INF",
        "True",
        "TRUE",
        "tRUE",
        "tru",
        "truee",
        "t",
        "False",
        "FALSE",
        "fals",
        "f",
        "Null",
        "NULL",
        "nul",
        "nulll",
        "n",
        "None",
        "nil",
        "undefined",
        "yes",
        "no",
        "a",
        "abc",
        "$",
        "@",
        "#",
        "\\",
        "\\n",
        "\"",
        "\"a",
        "a\"",
        "\"\\\"",
        "\"\\",
        R"("\x41")",
        R"("\a")",
        R"("\v")",
        R"("\0")",
        R"("\'")",
        R"("\e")",
        R"("\U0041")",
        R"("\u")",
        R"("\u0")",
        R"("\u00")",
        R"("\u004")",
        R"("\u004g")",
        R"("\u 041")",
        R"("\u-041")",
        R"("\u+041")",
        R"("\u0x41")",
        R"("\ )",
        R"("\")",
        "\"a\nb\"",
        "\"a\tb\"",
        "\"a\rb\"",
        "\"a\" \"b\"",
        "\"a\"b",
        "`a`",
        "\xc2\xab"
        "a\xc2\xbb",
        "\xe2\x80\x9c"
        "a\xe2\x80\x9d",
        "// a\n1",
        "1 // a",
        "/* a */ 1",
        "1 /* a */",
        "/**/",
        "# a\n1",
        "1 # a",
        "<!-- a --> 1",
        "[1 /* a */]",
        "{/* a */}",
        "[//\n]",
        "\xef\xbb\xbf"
        "1",
        "\xfe\xff",
        "\xff\xfe",
        "1\x0b",
        "\x0c"
        "1",
        "\xc2\xa0"
        "1",
        "\xe2\x80\x8b"
        "1",
        "\xe2\x80\xa8"
        "1",
        "1\xe2\x80\xa9",
        "\x1e"
        "1",
        "[\x0b]",
        "[1\xc2\xa0]",
        "{\x0c}",
        "\"\xc0\xaf\"",
        "\"\xe0\x80\xaf\"",
        "\"\xf0\x80\x80\xaf\"",
        "\"\xed\xa0\x80\"",
        "\"\xed\xbf\xbf\"",
        "\"\xed\xa0\xb4\xed\xb4\x9e\"",
        "\"\xf4\x90\x80\x80\"",
        "\"\xf8\x80\x80\x80\x80\"",
        "\"\xe2\x82\"",
        "\"\xf0\x9d\x84\"",
        "\"\xc3(\"",
        "\"\xf2",
        "\"\xe2\x82",
        "\"a\xf0",
        "{\"\xe9\":1}",
        "18446744073709551616",
        "-9223372036854775809",
        "100000000000000000000",
        "-100000000000000000000",
        "1e400",
        "-1e400",
        "1e99999999999",
        R"({"a\u0000b":1})",
        R"({"\u0000":1})",
    };
    return texts;
}

/// Those, and every byte that must not stand in a string as it is.
std::vector<std::string> refused()
{
    std::vector<std::string> texts = refused_as_they_stand();
    for (int byte = 0; byte < 256; ++byte)
        if (byte < 0x20 || byte >= 0x80)
            texts.push_back(std::string("\"") + static_cast<char>(byte) + '"');
    return texts;
}

/// What RFC 8259 leaves to the reader.
const std::vector<std::string>& either_way()
{
    static const std::vector<std::string> texts = {
        R"("\ud800")",
        R"("\udc00")",
        R"("\ud800\ud800")",
        R"("\ud800x")",
        R"("\ud800\n")",
        R"("\udc00\ud800")",
        R"("\uD834\u0041")",
        R"("\u0000")",
        R"("a\u0000b")",
        R"({"a":1,"a":2})",
        R"({"a":1,"a":1})",
        R"({"":1,"":2})",
        "1.00000000000000000000000000000000001",
        "-1e-999",
        "1e-999",
        "123456789012345678",
        "0.0000000000000000000000000000000000000000000000000000000000000000000000000000000000001",
        R"({"\ud800":1})",
        R"({"\udead":1})",
        "[1e-400]",
        R"(["\ud834"])",
    };
    return texts;
}

/// The text where a value can stand in a request, and as a member's name.
std::vector<std::string> requests_with(const std::string& text)
{
    return {
        R"({"jsonrpc":"2.0","method":"echo","id":1,"params":[)" + text + "]}",
        R"({"jsonrpc":"2.0","method":"echo","id":1,"params":{"a":)" + text + "}}",
        R"({"jsonrpc":"2.0","method":"echo","id":)" + text + "}",
        R"({"jsonrpc":"2.0","method":)" + text + R"(,"id":1})",
        R"({"jsonrpc":"2.0","method":"echo","id":1,"more":)" + text + "}",
        text,
    };
}

class json_texts : public testing::Test
{
protected:
    std::string answer(const std::string& body) const { return m_dispatcher.answer(body).value_or(""); }

private:
    const host_test::FuzzMethods m_methods;
    const zorbd::Dispatcher m_dispatcher{m_methods, {}};
};

TEST_F(json_texts, that_are_json_are_taken_everywhere)
{
    for (const std::string& text : accepted())
        for (const std::string& request : requests_with(text)) {
            const std::string answered = answer(request);
            EXPECT_THAT(answered, Not(HasSubstr("-32700"))) << request;
            EXPECT_TRUE(strict_json::is_json(answered)) << request;
        }
}

TEST_F(json_texts, that_are_not_json_are_refused_everywhere)
{
    for (const std::string& text : refused())
        for (const std::string& request : requests_with(text))
            EXPECT_THAT(answer(request), HasSubstr("-32700")) << request;
}

TEST_F(json_texts, that_are_no_strings_are_refused_as_names)
{
    for (const std::string& text : accepted())
        if (text.front() != '"') {
            EXPECT_THAT(answer(R"({"jsonrpc":"2.0","method":"echo","id":1,)" + text + ":1}"),
                        HasSubstr("-32700"))
                << text;
        }
    for (const std::string& text : refused())
        EXPECT_THAT(answer(R"({"jsonrpc":"2.0","method":"echo","id":1,)" + text + ":1}"), HasSubstr("-32700"))
            << text;
}

TEST_F(json_texts, that_may_be_either_are_answered_with_json)
{
    for (const std::string& text : either_way())
        for (const std::string& request : requests_with(text))
            EXPECT_TRUE(strict_json::is_json(answer(request))) << request;
}

TEST_F(json_texts, cover_what_they_ought_to)
{
    EXPECT_GE(accepted().size() + refused().size() + either_way().size(), 250U);
}

} // namespace
