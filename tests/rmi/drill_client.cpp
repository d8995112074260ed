// SPDX-License-Identifier: Apache-2.0
// A client process of the interface of drill.idl.

#include <CLI/CLI.hpp>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>

#include "ddsrmi.h"
#include "reply_handlers.h"
#include "stamp_stream.h"

namespace {

namespace rmi = org::opensplice::DDS_RMI;
using drill::Proxy;
using drill::StampStream;
using drill::StreamResult;

struct Options
{
    std::string service = "drill";
    DDS::Long instance = -1;
    std::string discovery_seconds = "60";
    unsigned timeout_ms = 60'000;
    DDS::Long caller = 1;
    std::size_t calls = 1;
    std::size_t window = 64;
    unsigned pause_us = 0;
};

constexpr DDS::Long usual_instance = 1; // of a server that was not asked for by number

Proxy find_proxy(const Options& options)
{
    Proxy proxy;
    std::cout << "looking for " << options.service << std::endl;
    rmi::DDS_Service::getServerProxy(options.service, options.instance, 1, proxy);
    if (proxy.get() != nullptr)
        proxy->setTimeout(options.timeout_ms);
    std::cout << "bound" << std::endl;
    return proxy;
}

void print(const std::string& title, const StreamResult& result)
{
    std::cout << title << " accepted=" << result.accepted << " replied=" << result.replied
              << " wrong=" << result.wrong << " given_up=" << result.given_up
              << " timeouts=" << result.timeouts << " not_found=" << result.not_found
              << " p50_us=" << result.percentile(50) << " p99_us=" << result.percentile(99)
              << " max_us=" << result.percentile(100) << std::endl;
}

StampStream make_stream(const Options& options)
{
    const DDS::Long instance = options.instance < 0 ? usual_instance : options.instance;
    return {find_proxy(options), instance, options.caller, options.window};
}

/// Binds, makes one call at once and waits for its reply.
int run_once(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    const auto tally = std::make_shared<drill::Tally>();
    const rmi::shared_ptr<drill::EchoHandler> handler(new drill::EchoHandler(tally, 42));
    proxy->async_echo(42, handler.get());
    const bool answered = tally->wait_for_replies(1, std::chrono::milliseconds(options.timeout_ms));
    std::cout << (answered ? "answered" : "NOT ANSWERED") << std::endl;
    return answered && tally->wrong() == 0 ? 0 : 1;
}

/// Makes so many calls and waits for their replies.
int run_flood(const Options& options)
{
    StampStream stream = make_stream(options);
    for (std::size_t i = 0; i < options.calls; ++i)
        stream.call();
    stream.finish(std::chrono::milliseconds(options.timeout_ms));
    const StreamResult result = stream.take_result();
    print("done", result);
    return result.replied == options.calls && result.wrong == 0 ? 0 : 1;
}

/// Makes calls until standard input ends. A line on standard input is printed with the counts since the last.
int run_load(const Options& options)
{
    StampStream stream = make_stream(options);
    std::atomic<bool> ended{false};
    std::thread orders([&] {
        std::string line;
        while (std::getline(std::cin, line))
            print(line, stream.take_result());
        ended = true;
    });
    std::mutex mutex;
    std::condition_variable never;
    while (!ended) {
        stream.call();
        std::unique_lock lock(mutex);
        never.wait_for(lock, std::chrono::microseconds(options.pause_us));
    }
    orders.join();
    stream.finish(std::chrono::milliseconds(options.timeout_ms));
    print("done", stream.take_result());
    return 0;
}

int run(int (*mode)(const Options&), const Options& options)
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const std::string discovery = "--RMIServiceDiscoveryTimeout=" + options.discovery_seconds;
    std::array<const char*, 2> arguments{"drill_client", discovery.c_str()};
    if (!runtime->start(arguments.size(), arguments.data()))
        return 1;
    int result = 1;
    try {
        result = mode(options);
    } catch (const std::exception& error) {
        std::cerr << "drill_client: " << error.what() << std::endl;
    }
    runtime->stop();
    return result;
}

} // namespace

int main(int argc, char* argv[])
{
    Options options;
    CLI::App app{"Calls the interface that the tests of the RMI layer serve."};
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--service", options.service, "Name of the service")->capture_default_str();
    app.add_option("--instance", options.instance, "Instance number of the server, -1 for any")
        ->capture_default_str();
    app.add_option("--discovery", options.discovery_seconds, "Seconds that the lookup waits")
        ->capture_default_str();
    app.add_option("--timeout", options.timeout_ms, "Milliseconds that a reply is waited for")
        ->capture_default_str();
    app.add_option("--caller", options.caller, "This client's number among all of the same server")
        ->capture_default_str();
    app.add_option("--window", options.window, "Most calls outstanding at a time")->capture_default_str();

    app.add_subcommand("once", "Make one call right after binding");
    CLI::App* const flood = app.add_subcommand("flood", "Make a number of calls");
    flood->add_option("--calls", options.calls, "How many")->capture_default_str();
    CLI::App* const load = app.add_subcommand(
        "load", "Make calls until standard input ends; each line on it asks for the counts since the last");
    load->add_option("--pause", options.pause_us, "Microseconds between calls")->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    if (app.got_subcommand("once"))
        return run(run_once, options);
    return run(app.got_subcommand(flood) ? run_flood : run_load, options);
}
