// SPDX-License-Identifier: Apache-2.0

// The calls of call_benchmark over the plug-in alone, in the DDS domain that CYCLONEDDS_URI configures: for
// comparing configurations. Prints one line of JSON.

#include <iostream>
#include <vector>

#include "caller.h"
#include "latency_log.h"
#include "plugin_calls.h"

int main()
{
    constexpr std::size_t one_at_a_time = 5000;
    constexpr std::size_t pipelined = 20'000;
    std::ostream screen(std::cout.rdbuf()); // the plug-in's own lines are kept off it
    bench::PluginCalls plugin;
    bench::Caller caller(plugin);
    std::vector<double> seconds;
    for (std::size_t i = 0; i < one_at_a_time; ++i)
        seconds.push_back(caller.one_call());
    const double all = caller.pipelined(pipelined);
    screen << R"({"median_us": )" << bench::percentile(seconds, 0.5) * 1e6 << R"(, "p99_us": )"
           << bench::percentile(seconds, 0.99) * 1e6 << R"(, "calls_per_second": )"
           << static_cast<double>(pipelined) / all << '}' << std::endl;
}
