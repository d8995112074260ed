// SPDX-License-Identifier: Apache-2.0
// A plug-in that was built with an earlier release runs with today's library and host.
#include <gmock/gmock.h>

#include <string>

#include "json_matchers.h"
#include "zorbd_process.h"

namespace {

class EarlierPlugin : public testing::Test
{
protected:
    std::string answer(const std::string& method, const std::string& params = "{}")
    {
        return host_test::ask(zorbd.port(), host_test::post(host_test::call(method, params))).body;
    }

    host_test::ZorbdProcess zorbd{{"--plugin", EARLIER_PLUGIN}};
    const bool is_bound = zorbd.says("earlier_plugin.so is bound");
};

TEST_F(EarlierPlugin, reads_and_writes_json)
{
    ASSERT_TRUE(is_bound) << zorbd.error_output();
    EXPECT_THAT(answer("compose", R"({"text":"seven","number":6})"),
                host_test::JsonEq(R"({"jsonrpc":"2.0","id":1,"result":{"text":"seven","has_text":1,
                    "all":"{\"text\":\"seven\",\"number\":6}","deep_copy":{"text":"seven","number":7}}})"));
}

TEST_F(EarlierPlugin, has_methods_of_its_own_classes_called)
{
    ASSERT_TRUE(is_bound) << zorbd.error_output();
    EXPECT_THAT(answer("sum", R"({"first":3,"second":"4"})"),
                host_test::JsonEq(R"({"jsonrpc":"2.0","id":1,"result":7})"));
}

TEST_F(EarlierPlugin, finds_its_methods_in_the_table)
{
    ASSERT_TRUE(is_bound) << zorbd.error_output();
    EXPECT_THAT(answer("list_methods"),
                host_test::JsonEq(R"({"jsonrpc":"2.0","id":1,"result":"sum compose refuse list_methods "})"));
}

TEST_F(EarlierPlugin, has_its_exceptions_answered_as_errors)
{
    ASSERT_TRUE(is_bound) << zorbd.error_output();
    EXPECT_THAT(answer("refuse"), testing::HasSubstr("-32602"));
}

} // namespace
