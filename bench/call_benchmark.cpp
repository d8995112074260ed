// SPDX-License-Identifier: Apache-2.0

// The time from a method object's Call to its reply hook, and how many calls go through when 64 are
// outstanding, beside the same exchange on the Cyclone C API, over gRPC and over D-Bus. All are measured
// alternately in one run, against server processes of their own; the last line is JSON with the medians over
// all repetitions.

#include <benchmark/benchmark.h>

#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "caller.h"
#include "grpc_calls.h"
#include "latency_log.h"
#include "plugin_calls.h"
#include "raw_calls.h"
#include "sdbus_calls.h"
#include "support/dds_domain.h"

namespace {

struct Measured
{
    std::vector<double> medians;
    std::vector<double> p99s;
    std::vector<double> calls_per_second;
};
std::map<std::string, Measured>& results()
{
    static std::map<std::string, Measured> all;
    return all;
}

using bench::Caller;

void call_to_reply(benchmark::State& state, Caller& caller, const std::string& name)
{
    std::vector<double> seconds;
    for (auto _ : state) {
        seconds.push_back(caller.one_call());
        state.SetIterationTime(seconds.back());
    }
    results()[name].medians.push_back(bench::percentile(seconds, 0.5));
    results()[name].p99s.push_back(bench::percentile(seconds, 0.99));
    state.counters["median_us"] = bench::percentile(seconds, 0.5) * 1e6;
    state.counters["p99_us"] = bench::percentile(seconds, 0.99) * 1e6;
}

void throughput(benchmark::State& state, Caller& caller, const std::string& name)
{
    constexpr std::size_t calls = 20'000;
    for (auto _ : state) {
        const double seconds = caller.pipelined(calls);
        state.SetIterationTime(seconds);
        results()[name].calls_per_second.push_back(static_cast<double>(calls) / seconds);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(calls) * static_cast<std::int64_t>(state.iterations()));
}

void register_caller(Caller& caller, const std::string& name)
{
    benchmark::RegisterBenchmark(
        ("call_to_reply/" + name).c_str(),
        [&caller, name](benchmark::State& state) { call_to_reply(state, caller, name); })
        ->UseManualTime()
        ->Iterations(5'000);
    benchmark::RegisterBenchmark(
        ("throughput_64/" + name).c_str(),
        [&caller, name](benchmark::State& state) { throughput(state, caller, name); })
        ->UseManualTime()
        ->Iterations(1);
}

/// A member of the JSON object that the program ends with.
std::string summary(const std::string& name, const Measured& measured)
{
    std::ostringstream text;
    text << '"' << name << R"(": {"median_us": )" << bench::percentile(measured.medians, 0.5) * 1e6
         << R"(, "p99_us": )" << bench::percentile(measured.p99s, 0.5) * 1e6 << R"(, "calls_per_second": )"
         << bench::percentile(measured.calls_per_second, 0.5) << '}';
    return text.str();
}

void print_summary(std::ostream& screen)
{
    const char* separator = "{";
    for (const auto& [name, measured] : results()) {
        screen << separator << summary(name, measured);
        separator = ", ";
    }
    screen << '}' << std::endl;
}

} // namespace

int main(int argc, char** argv)
{
    // One call after the other of each benchmark in turn, so that what disturbs the machine disturbs both.
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = "--benchmark_repetitions=7";
    arguments.insert(arguments.begin() + 1, {interleaving.data(), repetitions.data()});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    const test_support::DdsDomain domain;
    std::ostream screen(std::cout.rdbuf()); // the plug-in's own lines are kept off it
    bench::RawCalls raw;
    bench::PluginCalls plugin;
    bench::GrpcCalls grpc;
    bench::SdbusCalls sdbus;
    Caller raw_caller(raw);
    Caller plugin_caller(plugin);
    Caller grpc_caller(grpc);
    Caller sdbus_caller(sdbus);
    register_caller(raw_caller, "raw");
    register_caller(plugin_caller, "plugin");
    register_caller(grpc_caller, "grpc");
    register_caller(sdbus_caller, "sdbus");

    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    reporter.SetOutputStream(&screen);
    benchmark::RunSpecifiedBenchmarks(&reporter);

    print_summary(screen);
    return 0;
}
