// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::ElementsAre;

class NodeConfigurationOperations : public OperationTest
{
protected:
    std::vector<std::string> arguments(const std::string& name, const std::string& params)
    {
        call(name, "{\"params\": " + params + "}");
        return m_proxy->calls().back().arguments;
    }
};

TEST_F(NodeConfigurationOperations, switch_advertising_on_for_the_text_true)
{
    EXPECT_THAT(arguments("advertising", R"({"on": "true"})"), ElementsAre("true"));
}

class OtherSwitchText : public NodeConfigurationOperations, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Advertising, OtherSwitchText,
                         testing::Values("false", "TRUE", "True", "tRUE", "1", " true", "true ", "", "tru",
                                         "truee", "on", "yes", "true\\u0000", "true\\n"));

TEST_P(OtherSwitchText, switches_advertising_off)
{
    const std::string text = GetParam();

    EXPECT_THAT(arguments("advertising", "{\"on\": \"" + text + "\"}"), ElementsAre("false"));
}

TEST_F(NodeConfigurationOperations, read_a_JSON_boolean_as_its_text)
{
    EXPECT_THAT(arguments("advertising", R"({"on": true})"), ElementsAre("true"));
    EXPECT_THAT(arguments("advertising", R"({"on": false})"), ElementsAre("false"));
}

TEST_F(NodeConfigurationOperations, hand_no_copy_of_the_switch_over)
{
    const Outcome outcome = call("advertising");

    EXPECT_THAT(only({"memory", "copy"}, outcome.events), ElementsAre("memory: new object"));
}

TEST_F(NodeConfigurationOperations, pass_the_duration_on_as_it_is)
{
    for (const char* const duration : {"0", "-1", "1", "2147483647", "-2147483648"}) {
        const std::string params =
            std::string(R"({"mac_addr": "AA", "newCfg": "c", "duration": )") + duration + "}";

        EXPECT_THAT(arguments("node_set_config_revert", params), ElementsAre("\"AA\"", "\"c\"", duration));
    }
}

TEST_F(NodeConfigurationOperations, pass_a_revert_in_the_order_address_configuration_duration_handler)
{
    arguments("node_set_config_revert", R"({"duration": 9, "newCfg": "second", "mac_addr": "first"})");

    const ReceivedCall& received = m_proxy->calls().back();
    EXPECT_THAT(received.arguments, ElementsAre("\"first\"", "\"second\"", "9"));
    EXPECT_NE(received.handler, nullptr);
}

TEST_F(NodeConfigurationOperations, pass_a_configuration_in_the_order_address_configuration)
{
    EXPECT_THAT(arguments("node_set_config", R"({"newCfg": "second", "mac_addr": "first"})"),
                ElementsAre("\"first\"", "\"second\""));
}

TEST_F(NodeConfigurationOperations, pass_texts_on_as_they_came)
{
    EXPECT_THAT(arguments("node_set_config", R"({"mac_addr": " aA:Zz ", "newCfg": "{\"x\": [1, 2]}\n"})"),
                ElementsAre("\" aA:Zz \"", "\"{\"x\": [1, 2]}\n\""));
    EXPECT_THAT(arguments("node_get_config", R"({"mac_addr": "no address"})"), ElementsAre("\"no address\""));
    EXPECT_THAT(arguments("node_get_data", R"({"mac_addr": "\u00e4"})"), ElementsAre("\"\xC3\xA4\""));
}

TEST_F(NodeConfigurationOperations, pass_empty_texts_as_empty_texts)
{
    EXPECT_THAT(arguments("node_get_config", R"({"mac_addr": ""})"), ElementsAre("\"\""));
    EXPECT_THAT(arguments("node_get_data", R"({"mac_addr": ""})"), ElementsAre("\"\""));
    EXPECT_THAT(arguments("node_set_config", R"({"mac_addr": "", "newCfg": ""})"),
                ElementsAre("\"\"", "\"\""));
    EXPECT_THAT(arguments("node_set_config_revert", R"({"mac_addr": "", "newCfg": ""})"),
                ElementsAre("\"\"", "\"\"", "0"));
}

TEST_F(NodeConfigurationOperations, allocate_one_character_for_an_empty_text)
{
    const Outcome outcome = call("node_set_config", R"({"params": {"mac_addr": "", "newCfg": ""}})");

    EXPECT_THAT(only({"memory"}, outcome.events),
                ElementsAre("memory: new array 1", "memory: new array 1", "memory: new object"));
}

TEST_F(NodeConfigurationOperations, take_their_parameters_from_the_params_only)
{
    call("node_set_config_revert",
         R"({"mac_addr": "top", "newCfg": "top", "duration": 1, "params": {"mac_addr": "AA"}})");

    EXPECT_THAT(m_proxy->calls().back().arguments, ElementsAre("\"AA\"", "\"\"", "0"));
}

TEST_F(NodeConfigurationOperations, look_the_params_up_for_every_key)
{
    EXPECT_THAT(only({"json"}, call("node_set_config_revert").events),
                ElementsAre("json: request.get_json_object(params)", "json: get_json_string(mac_addr)",
                            "json: dropped", "json: request.get_json_object(params)",
                            "json: get_json_string(newCfg)", "json: dropped",
                            "json: request.get_json_object(params)", "json: get_json_int(duration)",
                            "json: dropped"));
}

TEST_F(NodeConfigurationOperations, copy_each_text_before_the_next_key_is_looked_up)
{
    EXPECT_THAT(only({"json", "copy"}, call("node_set_config").events),
                ElementsAre("json: request.get_json_object(params)", "json: get_json_string(mac_addr)",
                            "json: dropped", "copy: AA:02", "json: request.get_json_object(params)",
                            "json: get_json_string(newCfg)", "json: dropped", "copy: i=60; m=a"));
}

TEST_F(NodeConfigurationOperations, make_the_handler_first_for_data_and_advertising_only)
{
    const auto logs_first = [this](const char* name) {
        return only({"output", "mutex"}, call(name).events).front().rfind("output: ", 0) == 0;
    };

    EXPECT_FALSE(logs_first("node_get_data"));
    EXPECT_FALSE(logs_first("advertising"));
    EXPECT_TRUE(logs_first("node_get_config"));
    EXPECT_TRUE(logs_first("node_set_config"));
    EXPECT_TRUE(logs_first("node_set_config_revert"));
}

} // namespace
