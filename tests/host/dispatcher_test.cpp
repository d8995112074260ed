// SPDX-License-Identifier: Apache-2.0
#include "jsonrpc/dispatcher.h"

#include <ddsrmi.h>
#include <gmock/gmock.h>

#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "json_matchers.h"
#include "method_stubs.h"
#include "zeb/api/RpcError.h"

namespace {

using host_test::JsonEq;
using testing::Optional;
using Json = host_test::FunctionMethod::Json;

std::string request(const std::string& method, const std::string& id, const std::string& params = "{}")
{
    return R"({"jsonrpc":"2.0","method":")" + method + R"(","params":)" + params + R"(,"id":)" + id + '}';
}

std::string error(int code, const std::string& message, const std::string& data, const std::string& id = "1")
{
    return R"({"jsonrpc":"2.0","error":{"code":)" + std::to_string(code) + R"(,"message":")" + message +
           R"(","data":")" + data + R"("},"id":)" + id + '}';
}

class dispatcher : public testing::Test
{
protected:
    dispatcher()
    {
        m_methods.add("seven", [](const Json&, Json&) { return 7; });
        m_methods.add("echo", [](const Json& in, Json& out) {
            out.set_json_object("result", in.get_json_object("params"));
            return -1;
        });
    }

    void add_throwing(const std::function<void()>& thrower)
    {
        m_methods.add("fail", [thrower](const Json&, Json&) {
            thrower();
            return 0;
        });
    }

    std::optional<std::string> answer(const std::string& body) const { return m_dispatcher.answer(body); }

    host_test::StubDirectory m_methods;
    zorbd::Dispatcher m_dispatcher{m_methods, {8, 3}};
};

TEST_F(dispatcher, answers_the_integer_that_the_method_returns)
{
    EXPECT_THAT(answer(request("seven", "1")), Optional(JsonEq(R"({"jsonrpc":"2.0","result":7,"id":1})")));
}

TEST_F(dispatcher, prefers_the_result_that_the_method_wrote)
{
    EXPECT_THAT(answer(request("echo", "1", R"({"a":[1.50,"x"]})")),
                Optional(std::string(R"({"jsonrpc":"2.0","result":{"a":[1.50,"x"]},"id":1})")));
}

TEST_F(dispatcher, takes_null_for_a_written_result)
{
    m_methods.add("nothing", [](const Json&, Json& out) {
        out.set_json_object("result", Json());
        return 5;
    });

    EXPECT_THAT(answer(request("nothing", "1")),
                Optional(JsonEq(R"({"jsonrpc":"2.0","result":null,"id":1})")));
}

TEST_F(dispatcher, gives_the_method_the_whole_request)
{
    std::string seen;
    m_methods.add("look", [&seen](const Json& in, Json&) {
        seen = in.to_string();
        return 0;
    });
    const std::string body =
        R"({"jsonrpc":"2.0","method":"look","params":[1,[2],{"a":null}],"id":"x","more":true})";

    answer(body);

    EXPECT_THAT(seen, JsonEq(body));
}

TEST_F(dispatcher, calls_the_method_without_params_too)
{
    EXPECT_THAT(answer(R"({"jsonrpc":"2.0","method":"seven","id":1})"),
                Optional(JsonEq(R"({"jsonrpc":"2.0","result":7,"id":1})")));
}

TEST_F(dispatcher, runs_a_notification_and_is_silent_whatever_comes_of_it)
{
    int calls = 0;
    m_methods.add("count", [&calls](const Json&, Json&) -> int {
        ++calls;
        throw std::runtime_error("not to be heard");
    });

    EXPECT_EQ(answer(R"({"jsonrpc":"2.0","method":"count"})"), std::nullopt);
    EXPECT_EQ(calls, 1);
}

TEST_F(dispatcher, runs_a_batch_in_its_order)
{
    std::vector<int> order;
    m_methods.add("note", [&order](const Json& in, Json&) {
        order.push_back(in.get_json_object("params").get_json_int("n"));
        return 0;
    });

    answer('[' + request("note", "1", R"({"n":1})") + ',' + request("note", "2", R"({"n":2})") + ',' +
           request("note", "3", R"({"n":3})") + ']');

    EXPECT_THAT(order, testing::ElementsAre(1, 2, 3));
}

TEST_F(dispatcher, refuses_a_batch_above_the_limit_without_running_any_of_it)
{
    int calls = 0;
    m_methods.add("count", [&calls](const Json&, Json&) { return ++calls; });
    const std::string one = request("count", "1");

    const auto response = answer('[' + one + ',' + one + ',' + one + ',' + one + ']');

    EXPECT_THAT(response,
                Optional(JsonEq(error(-32600, "Invalid Request",
                                      "a batch of 4 requests is longer than the limit of 3", "null"))));
    EXPECT_EQ(calls, 0);
}

TEST_F(dispatcher, refuses_nesting_above_the_limit)
{
    const auto response = answer(request("seven", "1", "[[[[[[[[1]]]]]]]]"));

    EXPECT_THAT(host_test::essence(response.value()),
                JsonEq(R"({"jsonrpc":"2.0","error":{"code":-32700,"message":"Parse error"},"id":null})"));
}

TEST_F(dispatcher, answers_the_discovery_document)
{
    EXPECT_THAT(answer(R"({"jsonrpc":"2.0","method":"rpc.discover","id":1})"),
                Optional(JsonEq(R"({"jsonrpc":"2.0","result":{"openrpc":"stub"},"id":1})")));
}

TEST_F(dispatcher, tells_an_unknown_method_from_one_that_may_still_come)
{
    EXPECT_THAT(answer(request("nobody", "1")),
                Optional(JsonEq(error(-32601, "Method not found", "nobody"))));

    m_methods.may_still_come = true;

    EXPECT_THAT(
        answer(request("nobody", "1")),
        Optional(JsonEq(error(
            -32002, "Service not available",
            "nobody: a plug-in still waits for its service, and its methods are not known until then"))));
}

TEST_F(dispatcher, does_not_take_a_method_name_with_a_nul_for_its_beginning)
{
    EXPECT_THAT(host_test::essence(answer(request("seven\\u0000x", "1")).value()),
                JsonEq(R"({"jsonrpc":"2.0","error":{"code":-32601,"message":"Method not found"},"id":1})"));
}

struct Thrown
{
    const char* name;
    std::function<void()> thrower;
    int code;
    const char* message;
    const char* data;
};

void PrintTo(const Thrown& example, std::ostream* out)
{
    *out << example.name;
}

class ThrownByAMethod : public dispatcher, public testing::WithParamInterface<Thrown>
{
};

TEST_P(ThrownByAMethod, becomes_an_error_and_the_next_call_is_served)
{
    add_throwing(GetParam().thrower);

    EXPECT_THAT(answer(request("fail", "1")),
                Optional(JsonEq(error(GetParam().code, GetParam().message, GetParam().data))));
    EXPECT_THAT(answer(request("seven", "1")), Optional(JsonEq(R"({"jsonrpc":"2.0","result":7,"id":1})")));
}

namespace rmi = org::opensplice::DDS_RMI;

const Thrown thrown[] = {
    {"invalid_argument", [] { throw std::invalid_argument("stoi"); }, -32602, "Invalid params", "fail: stoi"},
    {"out_of_range", [] { throw std::out_of_range("stoi"); }, -32602, "Invalid params", "fail: stoi"},
    {"service_not_found", [] { throw rmi::SERVICE_NOT_FOUND("no VarnelDE_Server"); }, -32000,
     "Remote service not found", "fail: no VarnelDE_Server"},
    {"timeout", [] { throw rmi::TIMEOUT("VarnelDE_Server is slow"); }, -32001, "Remote service timed out",
     "fail: VarnelDE_Server is slow"},
    {"another_rmi_exception", [] { throw rmi::INTERNAL_ERROR("broken"); }, -32603, "Internal error",
     "fail: broken"},
    {"logic_error", [] { throw std::logic_error("a \"bug\""); }, -32603, "Internal error",
     R"(fail: a \"bug\")"},
    {"bad_alloc", [] { throw std::bad_alloc(); }, -32603, "Internal error", "fail: std::bad_alloc"},
    {"an_integer", [] { throw 5; }, -32603, "Internal error",
     "fail: the method threw something that is no std::exception"},
};

INSTANTIATE_TEST_SUITE_P(dispatcher, ThrownByAMethod, testing::ValuesIn(thrown),
                         [](const auto& example) { return example.param.name; });

using zeb::api::RpcError;

TEST_F(dispatcher, answers_the_error_that_a_method_gives_itself)
{
    add_throwing([] { throw RpcError(404, "No \"such\" room", Json::parse(R"({"rooms":["kitchen"]})")); });

    EXPECT_EQ(
        answer(request("fail", "1")),
        R"({"jsonrpc":"2.0","error":{"code":404,"message":"No \"such\" room","data":{"rooms":["kitchen"]}},"id":1})");
}

TEST_F(dispatcher, leaves_data_out_where_the_error_has_none)
{
    add_throwing([] { throw RpcError(-5, "Too cold"); });

    EXPECT_EQ(answer(request("fail", "1")),
              R"({"jsonrpc":"2.0","error":{"code":-5,"message":"Too cold"},"id":1})");
}

TEST_F(dispatcher, lets_methods_use_the_codes_of_json_rpc_that_speak_of_methods)
{
    for (const int code : {-32602, -32603, -32769, -31999, 1}) {
        add_throwing([code] { throw RpcError(code, "own words"); });

        EXPECT_THAT(
            answer(request("fail", "1")),
            Optional(testing::HasSubstr("\"code\":" + std::to_string(code) + ",\"message\":\"own words\"")));
    }
}

TEST_F(dispatcher, keeps_the_codes_that_methods_must_not_use_for_itself)
{
    for (const int code : {0, -32000, -32001, -32600, -32700, -32768}) {
        add_throwing([code] { throw RpcError(code, "own words", Json::parse("1")); });

        EXPECT_THAT(answer(request("fail", "1")),
                    Optional(JsonEq(error(-32603, "Internal error",
                                          "fail: it threw an error with the code " + std::to_string(code) +
                                              ", which is no method's to use: own words"))));
    }
}

TEST_F(dispatcher, answers_only_json_as_the_data_of_an_error)
{
    Json no_text;
    no_text.set_json_string("key", "caf\xe9");
    add_throwing([&no_text] { throw RpcError(404, "No such room", no_text); });

    EXPECT_THAT(answer(request("fail", "1")),
                Optional(JsonEq(error(-32603, "Internal error",
                                      "fail: the data of its error is not JSON: it has a number that is not "
                                      "finite, or a text that is not UTF-8"))));
}

TEST_F(dispatcher, answers_only_text_as_the_message_of_an_error)
{
    add_throwing([] { throw RpcError(404, "caf\xe9"); });

    EXPECT_THAT(
        answer(request("fail", "1")),
        Optional(JsonEq(error(-32603, "Internal error", "fail: it threw an error whose text is not UTF-8"))));
}

class EchoedId : public dispatcher, public testing::WithParamInterface<const char*>
{
};

TEST_P(EchoedId, is_the_very_same_text)
{
    EXPECT_EQ(answer(request("seven", GetParam())),
              R"({"jsonrpc":"2.0","result":7,"id":)" + std::string(GetParam()) + '}');
}

INSTANTIATE_TEST_SUITE_P(dispatcher, EchoedId,
                         testing::Values("0", "1", "-7", "9007199254740993", "-9223372036854775808",
                                         "18446744073709551615", "1.0", "1.50", "1e2", "1E+300", "null",
                                         R"("")", R"("1")", R"("a\u0000b")", R"("\"\\/\n")",
                                         "\"\xc3\xa4\xf0\x9f\x98\x80\""));

struct Invalid
{
    const char* name;
    const char* request;
    const char* id;
};

void PrintTo(const Invalid& example, std::ostream* out)
{
    *out << example.name;
}

class InvalidRequest : public dispatcher, public testing::WithParamInterface<Invalid>
{
};

TEST_P(InvalidRequest, is_refused_with_the_id_that_can_be_made_out)
{
    EXPECT_THAT(host_test::essence(answer(GetParam().request).value()),
                JsonEq(R"({"jsonrpc":"2.0","error":{"code":-32600,"message":"Invalid Request"},"id":)" +
                       std::string(GetParam().id) + '}'));
}

constexpr Invalid invalid_requests[] = {
    {"no_version", R"({"method":"seven","id":1})", "1"},
    {"another_version", R"({"jsonrpc":"1.0","method":"seven","id":1})", "1"},
    {"version_as_a_number", R"({"jsonrpc":2.0,"method":"seven","id":"a"})", R"("a")"},
    {"version_with_a_nul", R"({"jsonrpc":"2.0\u0000","method":"seven","id":1})", "1"},
    {"no_method", R"({"jsonrpc":"2.0","id":1})", "1"},
    {"null_method", R"({"jsonrpc":"2.0","method":null,"id":1})", "1"},
    {"params_as_text", R"({"jsonrpc":"2.0","method":"seven","params":"x","id":1})", "1"},
    {"null_params", R"({"jsonrpc":"2.0","method":"seven","params":null,"id":1})", "1"},
    {"id_as_a_boolean", R"({"jsonrpc":"2.0","method":"seven","id":true})", "null"},
    {"id_as_an_array", R"({"jsonrpc":"2.0","method":"seven","id":[1]})", "null"},
    {"id_as_an_object", R"({"jsonrpc":"2.0","method":"seven","id":{}})", "null"},
    {"a_text", R"("seven")", "null"},
    {"null", "null", "null"},
    {"a_number", "3", "null"},
};

INSTANTIATE_TEST_SUITE_P(dispatcher, InvalidRequest, testing::ValuesIn(invalid_requests),
                         [](const auto& example) { return example.param.name; });

} // namespace
