// SPDX-License-Identifier: Apache-2.0

// Makes calls one after the other, for callgrind to count their instructions: call_cost plugin|raw <calls>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "plugin_calls.h"
#include "raw_calls.h"
#include "support/dds_domain.h"

namespace {

std::unique_ptr<bench::Calls> make_calls(const std::string& kind)
{
    if (kind == "plugin")
        return std::make_unique<bench::PluginCalls>();
    return std::make_unique<bench::RawCalls>();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const test_support::DdsDomain domain;
    const auto calls = make_calls(argv[1]);
    const auto count = static_cast<std::size_t>(std::atoi(argv[2]));
    for (std::size_t done = 1; done <= count; ++done) {
        calls->start();
        calls->replies().wait_for(done);
    }
}
