// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_DEMO_CALLS_H
#define TESTS_SUPPORT_DEMO_CALLS_H

#include <string>
#include <vector>

namespace test_support {

/// One line of tools/demo_calls.txt.
struct DemoCall
{
    std::string method;
    std::string reply_line;
    /// As JSON; empty for none.
    std::string params;
};

/// The calls of the demonstration: every method once; what a call leaves behind, the later ones find.
std::vector<DemoCall> demo_calls();

} // namespace test_support

#endif
