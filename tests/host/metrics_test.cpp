// SPDX-License-Identifier: Apache-2.0
#include "events/metrics.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(metrics, keep_no_more_error_codes_of_a_method_than_fit)
{
    zorbd::Metrics metrics;
    for (int code = 1; code <= 60; ++code)
        metrics.count_call("fail", code, std::chrono::nanoseconds(1));
    metrics.count_call("fail", 1, std::chrono::nanoseconds(1));

    zorbd::MetricsText text;
    metrics.write(text);

    EXPECT_THAT(text.text(), AllOf(HasSubstr(R"(zorbd_calls_total{method="fail",code="1"} 2)"),
                                   HasSubstr(R"(zorbd_calls_total{method="fail",code="50"} 1)"),
                                   Not(HasSubstr(R"(code="51")")),
                                   HasSubstr(R"(zorbd_calls_total{method="fail",code="other"} 10)")));
}

} // namespace
