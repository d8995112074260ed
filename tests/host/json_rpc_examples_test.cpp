// SPDX-License-Identifier: Apache-2.0
// The examples that the JSON-RPC 2.0 document gives, one by one.
#include <gmock/gmock.h>

#include <optional>
#include <ostream>
#include <string>

#include "json_matchers.h"
#include "jsonrpc/dispatcher.h"
#include "method_stubs.h"

namespace {

using host_test::FunctionMethod;
using Json = FunctionMethod::Json;

int subtract(const Json& in, Json& /*out*/)
{
    const Json params = in.get_json_object("params");
    if (json_object_is_type(params.get(), json_type_object))
        return params.get_json_int("minuend") - params.get_json_int("subtrahend");
    return json_object_get_int(json_object_array_get_idx(params.get(), 0)) -
           json_object_get_int(json_object_array_get_idx(params.get(), 1));
}

int sum(const Json& in, Json& /*out*/)
{
    const Json params = in.get_json_object("params");
    int total = 0;
    for (std::size_t i = 0; i < json_object_array_length(params.get()); ++i)
        total += json_object_get_int(json_object_array_get_idx(params.get(), i));
    return total;
}

int get_data(const Json& /*in*/, Json& out)
{
    out.set_json_object("result", Json(host_test::parsed(R"(["hello", 5])").get()));
    return 0;
}

struct Example
{
    const char* name;
    const char* request;
    const char* response; ///< empty: none
};

void PrintTo(const Example& example, std::ostream* out)
{
    *out << example.name;
}

constexpr Example examples[] = {
    {"positional_parameters", R"({"jsonrpc": "2.0", "method": "subtract", "params": [42, 23], "id": 1})",
     R"({"jsonrpc": "2.0", "result": 19, "id": 1})"},
    {"positional_parameters_swapped",
     R"({"jsonrpc": "2.0", "method": "subtract", "params": [23, 42], "id": 2})",
     R"({"jsonrpc": "2.0", "result": -19, "id": 2})"},
    {"named_parameters",
     R"({"jsonrpc": "2.0", "method": "subtract", "params": {"subtrahend": 23, "minuend": 42}, "id": 3})",
     R"({"jsonrpc": "2.0", "result": 19, "id": 3})"},
    {"named_parameters_swapped",
     R"({"jsonrpc": "2.0", "method": "subtract", "params": {"minuend": 42, "subtrahend": 23}, "id": 4})",
     R"({"jsonrpc": "2.0", "result": 19, "id": 4})"},
    {"notification", R"({"jsonrpc": "2.0", "method": "update", "params": [1,2,3,4,5]})", ""},
    {"notification_of_an_unknown_method", R"({"jsonrpc": "2.0", "method": "foobar"})", ""},
    {"non_existent_method", R"({"jsonrpc": "2.0", "method": "foobar", "id": "1"})",
     R"({"jsonrpc": "2.0", "error": {"code": -32601, "message": "Method not found"}, "id": "1"})"},
    {"invalid_json", R"({"jsonrpc": "2.0", "method": "foobar, "params": "bar", "baz])",
     R"({"jsonrpc": "2.0", "error": {"code": -32700, "message": "Parse error"}, "id": null})"},
    {"invalid_request_object", R"({"jsonrpc": "2.0", "method": 1, "params": "bar"})",
     R"({"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null})"},
    {"batch_of_invalid_json", R"([
        {"jsonrpc": "2.0", "method": "sum", "params": [1,2,4], "id": "1"},
        {"jsonrpc": "2.0", "method"
      ])",
     R"({"jsonrpc": "2.0", "error": {"code": -32700, "message": "Parse error"}, "id": null})"},
    {"empty_batch", "[]",
     R"({"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null})"},
    {"invalid_batch_that_is_not_empty", "[1]",
     R"([{"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null}])"},
    {"invalid_batch", "[1,2,3]",
     R"([{"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null},
         {"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null},
         {"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null}])"},
    {"batch", R"([
        {"jsonrpc": "2.0", "method": "sum", "params": [1,2,4], "id": "1"},
        {"jsonrpc": "2.0", "method": "notify_hello", "params": [7]},
        {"jsonrpc": "2.0", "method": "subtract", "params": [42,23], "id": "2"},
        {"foo": "boo"},
        {"jsonrpc": "2.0", "method": "foo.get", "params": {"name": "myself"}, "id": "5"},
        {"jsonrpc": "2.0", "method": "get_data", "id": "9"}
      ])",
     R"([
        {"jsonrpc": "2.0", "result": 7, "id": "1"},
        {"jsonrpc": "2.0", "result": 19, "id": "2"},
        {"jsonrpc": "2.0", "error": {"code": -32600, "message": "Invalid Request"}, "id": null},
        {"jsonrpc": "2.0", "error": {"code": -32601, "message": "Method not found"}, "id": "5"},
        {"jsonrpc": "2.0", "result": ["hello", 5], "id": "9"}
      ])"},
    {"batch_of_notifications_only", R"([
        {"jsonrpc": "2.0", "method": "notify_sum", "params": [1,2,4]},
        {"jsonrpc": "2.0", "method": "notify_hello", "params": [7]}
      ])",
     ""},
};

class JsonRpcExample : public testing::TestWithParam<Example>
{
protected:
    JsonRpcExample()
    {
        m_methods.add("subtract", subtract);
        m_methods.add("get_data", get_data);
        for (const char* name : {"sum", "notify_sum", "notify_hello", "update"})
            m_methods.add(name, sum);
    }

    host_test::StubDirectory m_methods;
    zorbd::Dispatcher m_dispatcher{m_methods, {}};
};

TEST_P(JsonRpcExample, is_answered_as_documented)
{
    const std::optional<std::string> response = m_dispatcher.answer(GetParam().request);

    ASSERT_EQ(response.has_value(), GetParam().response[0] != '\0');
    if (response) {
        EXPECT_THAT(host_test::essence(*response), host_test::JsonEq(GetParam().response));
    }
}

INSTANTIATE_TEST_SUITE_P(json_rpc, JsonRpcExample, testing::ValuesIn(examples),
                         [](const auto& example) { return example.param.name; });

} // namespace
