// SPDX-License-Identifier: Apache-2.0
#include "protected_system.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace trust_test {
namespace {

std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

} // namespace

std::vector<Call> every_method()
{
    std::vector<Call> calls;
    std::ifstream file(DEMO_CALLS);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#')
            continue;
        std::istringstream fields(line);
        Call call;
        for (std::string* const field : {&call.method, &call.reply, &call.params}) {
            std::getline(fields, *field, '|');
            *field = trimmed(*field);
        }
        calls.push_back(call);
    }
    return calls;
}

int count_answered(system_test::Host& host, const std::vector<Call>& calls)
{
    int answered = 0;
    for (const Call& call : calls)
        if (host.call(call.method, call.params).find("\"result\":0") != std::string::npos &&
            !host.next_line(call.reply).empty())
            ++answered;
    return answered;
}

std::string report_of_unbound_host(const Environment& environment)
{
    // Long enough for peers that know each other to meet, under an emulator too.
    system_test::Host host({"--discovery-timeout", "5", "--retry-pause", "60", "--retry-pause-max", "60"},
                           environment);
    if (host.process().error_output().find(" bound") == std::string::npos) // said before it was ready
        host.process().wait_for_error_line(" bound");
    const std::string said = host.process().error_output();
    EXPECT_NE(said.find("is not bound"), std::string::npos) << said;
    return said;
}

} // namespace trust_test
