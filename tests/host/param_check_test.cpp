// SPDX-License-Identifier: Apache-2.0
// Params of a described method: what is let through, and what is said of what is not.
#include <gmock/gmock.h>

#include <json-c/json_tokener.h>

#include <stdexcept>
#include <string>

#include "plugins/param_check.h"
#include "json/json_value.h"

namespace {

using strict_json::JsonValue;
using testing::AllOf;
using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;
using zorbd::ParamCheck;

JsonValue parse(const std::string& text)
{
    return JsonValue(json_tokener_parse(text.c_str()));
}

constexpr const char* described = R"([
    {"name": "mac", "required": true, "description": "Two pairs of digits.",
     "schema": {"type": "string", "pattern": "^[0-9]{2}:[0-9]{2}$"}},
    {"name": "count", "schema": {"type": "integer", "minimum": 1}}])";

class Params : public testing::Test
{
protected:
    /// What is wrong with a request that has these params.
    std::optional<std::string> fault(const std::string& params)
    {
        m_request = parse(R"({"params":)" + params + '}');
        return m_check.apply(m_request.get());
    }

    std::string request() const { return strict_json::json_text(m_request.get()); }

    const ParamCheck m_check{parse(described).get()};
    JsonValue m_request;
};

TEST_F(Params, that_are_as_described_pass_unchanged)
{
    EXPECT_EQ(fault(R"({"mac":"12:34","count":2})"), std::nullopt);
    EXPECT_EQ(request(), R"({"params":{"mac":"12:34","count":2}})");
    EXPECT_EQ(fault(R"({"mac":"12:34"})"), std::nullopt);
}

TEST_F(Params, by_position_get_their_names)
{
    EXPECT_EQ(fault(R"(["12:34",2])"), std::nullopt);

    EXPECT_EQ(request(), R"({"params":{"mac":"12:34","count":2}})");
}

TEST_F(Params, by_position_that_are_too_many_are_told_with_the_names)
{
    EXPECT_EQ(fault(R"(["12:34",2,3])"), R"(3 parameters were given; the method takes "mac", "count")");
}

TEST_F(Params, that_are_missing_are_named)
{
    EXPECT_EQ(fault("{}"), R"("mac" is missing; the method takes "mac", "count")");
    EXPECT_EQ(fault("[]"), R"("mac" is missing; the method takes "mac", "count")");
    JsonValue without = parse("{}");
    EXPECT_THAT(m_check.apply(without.get()), Optional(HasSubstr("is missing")));
}

TEST_F(Params, that_nobody_knows_are_named)
{
    EXPECT_EQ(fault(R"({"mac":"12:34","cuont":2})"),
              R"("cuont" is unknown; the method takes "mac", "count")");
}

TEST_F(Params, that_do_not_match_are_named_with_what_they_mean)
{
    EXPECT_THAT(
        fault(R"({"mac":"12-34"})"),
        Optional(AllOf(StartsWith(R"("mac" is not valid. Two pairs of digits. ()"), HasSubstr("pattern"))));
    EXPECT_THAT(fault(R"({"mac":12})"), Optional(StartsWith(R"("mac" is not valid)")));
    EXPECT_THAT(fault(R"({"mac":"12:34","count":0})"), Optional(StartsWith(R"("count" is not valid)")));
    EXPECT_THAT(fault(R"({"mac":"12:34","count":1.5})"), Optional(StartsWith(R"("count" is not valid)")));
    EXPECT_THAT(fault(R"({"mac":null})"), Optional(StartsWith(R"("mac" is not valid)")));
}

TEST_F(Params, that_are_very_long_are_refused_before_they_are_matched)
{
    const JsonValue repeated =
        parse(R"([{"name":"text","schema":{"pattern":"^(a|b)*$","maxLength":100000000}}])");
    const ParamCheck check(repeated.get());
    const JsonValue request = parse(R"({"params":{"text":")" + std::string(1000000, 'a') + R"("}})");

    EXPECT_THAT(check.apply(request.get()), Optional(StartsWith(R"("text" is not valid)")));
}

TEST(param_descriptions, that_cannot_be_used_are_named)
{
    const auto attempt = [](const std::string& params) { const ParamCheck check(parse(params).get()); };

    EXPECT_THROW(attempt(R"([{"schema":{}}])"), std::invalid_argument);
    EXPECT_THROW(attempt(R"([{"name":"x","schema":{"type":7}}])"), std::invalid_argument);
    EXPECT_THROW(attempt(R"([{"name":"x","schema":{"pattern":"("}}])"), std::invalid_argument);
    EXPECT_NO_THROW(attempt(R"([{"name":"x"}])"));
}

} // namespace
