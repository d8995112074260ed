// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "fakes/allocation_probe.h"
#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::ElementsAre;
using testing::IsEmpty;

class TestNodeOperations : public OperationTest
{
protected:
    Outcome create_with_type(const std::string& type)
    {
        return call("test_node_create", R"({"params": {"mac_addr": "AA", "type": ")" + type + "\"}}");
    }
};

struct TypeText
{
    const char* text;
    const char* number;
};

class ReadableType : public TestNodeOperations, public testing::WithParamInterface<TypeText>
{
};

INSTANTIATE_TEST_SUITE_P(TestNodes, ReadableType,
                         testing::Values(TypeText{"7", "7"}, TypeText{"   7", "7"}, TypeText{"\\t\\n 7", "7"},
                                         TypeText{"+7", "7"}, TypeText{"7abc", "7"}, TypeText{"7 8", "7"},
                                         TypeText{"7.9", "7"}, TypeText{"-1", "-1"}, TypeText{"0x10", "0"},
                                         TypeText{"007", "7"}, TypeText{"010", "10"},
                                         TypeText{"7\\u00008", "7"}, TypeText{"2147483647", "2147483647"},
                                         TypeText{"-2147483648", "-2147483648"}));

TEST_P(ReadableType, is_passed_on_as_its_number)
{
    const Outcome outcome = create_with_type(GetParam().text);

    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.result, 0);
    ASSERT_EQ(m_proxy->calls().size(), 1U);
    EXPECT_THAT(m_proxy->calls()[0].arguments, ElementsAre("\"AA\"", GetParam().number));
}

struct BadType
{
    const char* text;
    const char* thrown;
};

class UnreadableType : public TestNodeOperations, public testing::WithParamInterface<BadType>
{
};

constexpr const char* no_number = "std::invalid_argument: stoi";
constexpr const char* too_far = "std::out_of_range: stoi";

INSTANTIATE_TEST_SUITE_P(TestNodes, UnreadableType,
                         testing::Values(BadType{"", no_number}, BadType{"abc", no_number},
                                         BadType{"   ", no_number}, BadType{"-", no_number},
                                         BadType{"+", no_number}, BadType{"+-7", no_number},
                                         BadType{"x7", no_number}, BadType{"\\u00007", no_number},
                                         BadType{"2147483648", too_far}, BadType{"-2147483649", too_far},
                                         BadType{"99999999999999999999999999", too_far}));

TEST_P(UnreadableType, throws_and_starts_nothing)
{
    const Outcome outcome = create_with_type(GetParam().text);

    EXPECT_EQ(outcome.thrown, GetParam().thrown);
    EXPECT_THAT(only({"output", "mutex", "handle", "call"}, outcome.events), IsEmpty());
    EXPECT_THAT(m_proxy->calls(), IsEmpty());
    EXPECT_TRUE(outcome.is_response_untouched);
}

TEST_P(UnreadableType, leaves_the_copy_of_the_address)
{
    create_with_type(GetParam().text);

    EXPECT_THAT(arrays_left(), ElementsAre("AA"));
}

TEST_F(TestNodeOperations, hand_no_copy_of_the_type_over)
{
    create_with_type("7");

    EXPECT_THAT(arrays_left(), ElementsAre("AA"));
}

TEST_F(TestNodeOperations, copy_the_address_before_the_second_key_is_looked_up)
{
    EXPECT_THAT(only({"json", "copy"}, call("test_node_set_sensor_data").events),
                ElementsAre("json: request.get_json_object(params)", "json: get_json_string(mac_addr)",
                            "json: dropped", "copy: AA:06", "json: request.get_json_object(params)",
                            "json: get_json_string(newData)", "json: dropped", "copy: t=21"));
    EXPECT_THAT(only({"json", "copy"}, call("test_node_create").events),
                ElementsAre("json: request.get_json_object(params)", "json: get_json_string(mac_addr)",
                            "json: dropped", "copy: AA:05", "json: request.get_json_object(params)",
                            "json: get_json_string(type)", "json: dropped"));
}

TEST_F(TestNodeOperations, pass_sensor_data_in_the_order_address_data)
{
    call("test_node_set_sensor_data", R"({"params": {"newData": "second", "mac_addr": "first"}})");

    EXPECT_THAT(m_proxy->calls().back().arguments, ElementsAre("\"first\"", "\"second\""));
}

TEST_F(TestNodeOperations, pass_empty_texts_as_empty_texts)
{
    const Outcome outcome =
        call("test_node_set_sensor_data", R"({"params": {"mac_addr": "", "newData": ""}})");
    call("test_node_create", R"({"params": {"mac_addr": "", "type": "1"}})");

    EXPECT_THAT(m_proxy->calls()[0].arguments, ElementsAre("\"\"", "\"\""));
    EXPECT_THAT(m_proxy->calls()[1].arguments, ElementsAre("\"\"", "1"));
    EXPECT_THAT(only({"memory"}, outcome.events),
                ElementsAre("memory: new array 1", "memory: new array 1", "memory: new object"));
}

TEST_F(TestNodeOperations, take_their_parameters_from_the_params_only)
{
    call("test_node_set_sensor_data", R"({"mac_addr": "top", "newData": "top", "params": {"newData": "d"}})");

    EXPECT_THAT(m_proxy->calls().back().arguments, ElementsAre("\"\"", "\"d\""));
}

TEST_F(TestNodeOperations, log_before_the_handler_is_made)
{
    for (const char* const name : {"test_node_create", "test_node_set_sensor_data"})
        EXPECT_EQ(only({"output", "mutex"}, call(name).events).front(),
                  std::string("output: CALL RPC ") + name + "\n");
}

} // namespace
