// SPDX-License-Identifier: Apache-2.0
// What reaches the service when a request is not as the methods expect: whatever the framework's getters make
// of it, and nothing crashes.

#include <gmock/gmock.h>

#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::IsEmpty;

/// A JSON value, and what the getters make of it.
struct OddValue
{
    std::string name;
    std::string json;
    std::string as_text;
    std::string as_integer;
    /// What the conversion of the text to a node type gives; empty when it throws.
    std::string as_type;
    std::string type_error;
};

constexpr const char* no_number = "std::invalid_argument: stoi";
constexpr const char* too_far = "std::out_of_range: stoi";

const std::string long_text(1 << 20, 'x');

const std::vector<OddValue>& odd_values()
{
    static const std::vector<OddValue> values = {
        {"null_value", "null", "", "0", "", no_number},
        {"boolean_true", "true", "true", "1", "", no_number},
        {"boolean_false", "false", "false", "0", "", no_number},
        {"integer", "12", "12", "12", "12", ""},
        {"negative_integer", "-12", "-12", "-12", "-12", ""},
        {"fraction", "2.5", "2.5", "2", "2", ""},
        {"array", "[1,\"a\"]", "[1,\"a\"]", "0", "", no_number},
        {"object", "{\"a\":1}", "{\"a\":1}", "0", "", no_number},
        {"empty_text", "\"\"", "", "0", "", no_number},
        {"text_of_a_number", "\"34\"", "34", "34", "34", ""},
        {"text_with_a_NUL", "\"12\\u000034\"", "12", "0", "12", ""},
        {"text_that_begins_with_a_NUL", "\"\\u0000x\"", "", "0", "", no_number},
        {"invalid_UTF8", "\"\xFF\xC3\x28\xED\xA0\x80\"", "\xFF\xC3\x28\xED\xA0\x80", "0", "", no_number},
        {"mebibyte_of_text", '"' + long_text + '"', long_text, "0", "", no_number},
        {"largest_int", "2147483647", "2147483647", "2147483647", "2147483647", ""},
        {"smallest_int", "-2147483648", "-2147483648", "-2147483648", "-2147483648", ""},
        {"one_above_int", "2147483648", "2147483648", "2147483647", "", too_far},
        {"one_below_int", "-2147483649", "-2147483649", "-2147483648", "", too_far},
        {"far_beyond_int", "9223372036854775807", "9223372036854775807", "2147483647", "", too_far},
        {"huge_fraction", "1e300", "1e300", "2147483647", "1", ""},
    };
    return values;
}

/// What `parameter` is passed on as when its value is `value`; nothing for an unreadable type.
std::string argument_for(const OperationFacts& facts, const Parameter& parameter, const OddValue& value)
{
    if (parameter.getter == Getter::integer)
        return value.as_integer;
    if (parameter.is_copied)
        return '"' + value.as_text + '"';
    return facts.name == "advertising" ? (value.as_text == "true" ? "true" : "false") : value.as_type;
}

bool is_type(const Parameter& parameter)
{
    return parameter.key == "type";
}

class OddInput : public OperationTest
{
protected:
    /// Calls with `changed` as the JSON of that one parameter.
    Outcome call_with(const OperationFacts& facts, const Parameter& changed, const std::string& json)
    {
        std::string params;
        for (const Parameter& parameter : facts.parameters)
            params += (params.empty() ? "\"" : ", \"") + parameter.key +
                      "\": " + (parameter.key == changed.key ? json : parameter.json);
        return call(facts.name, "{\"params\": {" + params + "}}");
    }

    void expect_passed_on(const OperationFacts& facts, const Outcome& outcome,
                          const std::vector<std::string>& arguments)
    {
        EXPECT_EQ(outcome.thrown, "");
        EXPECT_EQ(outcome.result, 0);
        EXPECT_TRUE(outcome.is_response_untouched);
        ASSERT_EQ(m_proxy->calls().size(), 1U);
        EXPECT_EQ(m_proxy->calls()[0].operation, facts.name);
        // Not by EXPECT_EQ, which would print texts of a mebibyte.
        EXPECT_TRUE(m_proxy->calls()[0].arguments == arguments);
        m_proxy->forget_calls();
    }

    void expect_refused(const Outcome& outcome, const std::string& error)
    {
        EXPECT_EQ(outcome.thrown, error);
        EXPECT_TRUE(outcome.is_response_untouched);
        EXPECT_THAT(m_proxy->calls(), IsEmpty());
        EXPECT_THAT(only({"output"}, outcome.events), IsEmpty());
    }

    /// What a call without any parameters comes to.
    void expect_call_without_parameters(const OperationFacts& facts, const std::string& request)
    {
        SCOPED_TRACE(facts.name + " with " + request);
        const OddValue missing = {"", "", "", "0", "", no_number};
        const Outcome outcome = call(facts.name, request);
        if (facts.name == "test_node_create") {
            expect_refused(outcome, no_number);
            return;
        }
        std::vector<std::string> arguments;
        for (const Parameter& parameter : facts.parameters)
            arguments.push_back(argument_for(facts, parameter, missing));
        expect_passed_on(facts, outcome, arguments);
    }
};

class OddParameter : public OddInput, public testing::WithParamInterface<OddValue>
{
};

INSTANTIATE_TEST_SUITE_P(BadInput, OddParameter, testing::ValuesIn(odd_values()),
                         [](const auto& each) { return each.param.name; });

TEST_P(OddParameter, is_passed_on_as_the_getter_reads_it_by_every_method_and_key)
{
    for (const OperationFacts& facts : all_operations())
        for (const Parameter& changed : facts.parameters) {
            SCOPED_TRACE(facts.name + ", " + changed.key);
            const Outcome outcome = call_with(facts, changed, GetParam().json);
            if (is_type(changed) && GetParam().as_type.empty()) {
                expect_refused(outcome, GetParam().type_error);
                continue;
            }
            std::vector<std::string> arguments;
            for (const Parameter& parameter : facts.parameters)
                arguments.push_back(parameter.key == changed.key ? argument_for(facts, parameter, GetParam())
                                                                 : parameter.argument);
            expect_passed_on(facts, outcome, arguments);
        }
}

class OddParams : public OddInput, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(BadInput, OddParams,
                         testing::Values("{}", R"({"params": null})", R"({"params": true})",
                                         R"({"params": 3})", R"({"params": 2.5})", R"({"params": "text"})",
                                         R"({"params": ["AA", "on"]})", R"({"params": {}})",
                                         R"({"Params": {"mac_addr": "AA", "on": "true"}})",
                                         R"({"params": {"MAC_ADDR": "AA", "Type": "1"}})", "[]", "null"));

TEST_P(OddParams, read_as_missing_values_by_every_method)
{
    for (const OperationFacts& facts : all_operations())
        expect_call_without_parameters(facts, GetParam());
}

TEST_F(OddInput, in_one_key_leaves_the_others_alone_when_a_key_is_missing)
{
    for (const OperationFacts& facts : all_operations())
        for (const Parameter& missing : facts.parameters) {
            SCOPED_TRACE(facts.name + " without " + missing.key);
            std::string params;
            std::vector<std::string> arguments;
            for (const Parameter& parameter : facts.parameters) {
                const bool is_there = parameter.key != missing.key;
                if (is_there)
                    params += (params.empty() ? "\"" : ", \"") + parameter.key + "\": " + parameter.json;
                arguments.push_back(is_there ? parameter.argument
                                             : argument_for(facts, parameter, {"", "", "", "0", "", ""}));
            }
            const Outcome outcome = call(facts.name, "{\"params\": {" + params + "}}");
            if (is_type(missing))
                expect_refused(outcome, no_number);
            else
                expect_passed_on(facts, outcome, arguments);
        }
}

TEST_F(OddInput, with_a_NUL_is_copied_up_to_it_and_no_further)
{
    for (const OperationFacts& facts : all_operations())
        for (const Parameter& changed : facts.parameters) {
            if (!changed.is_copied)
                continue;
            SCOPED_TRACE(facts.name + ", " + changed.key);
            EXPECT_THAT(only({"memory"}, call_with(facts, changed, R"("ab\u0000cdefgh")").events),
                        testing::Contains("memory: new array 3"));
            m_proxy->forget_calls();
        }
}

} // namespace
