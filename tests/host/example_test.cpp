// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "json_matchers.h"
#include "zorbd_process.h"

namespace {

TEST(example, built_against_the_installed_framework_alone_is_served)
{
    host_test::ZorbdProcess zorbd({"--plugin", GREETER});
    ASSERT_TRUE(zorbd.says("greeter_plugin.so is bound")) << zorbd.error_output();

    const auto response =
        host_test::ask(zorbd.port(), host_test::post(host_test::call("greet", R"({"name":"Ada"})")));

    EXPECT_THAT(response.body, host_test::JsonEq(R"({"jsonrpc":"2.0","result":"Hello, Ada!","id":1})"));
}

} // namespace
