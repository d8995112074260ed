// SPDX-License-Identifier: Apache-2.0
#include "demo_calls.h"

#include <fstream>
#include <sstream>

namespace test_support {

namespace {

std::string trimmed(const std::string& text)
{
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

} // namespace

std::vector<DemoCall> demo_calls()
{
    std::vector<DemoCall> calls;
    std::ifstream file(DEMO_CALLS);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind('#', 0) == 0)
            continue;
        std::istringstream fields(line);
        DemoCall call;
        for (std::string* const field : {&call.method, &call.reply_line, &call.params}) {
            std::getline(fields, *field, '|');
            *field = trimmed(*field);
        }
        calls.push_back(call);
    }
    return calls;
}

} // namespace test_support
