// SPDX-License-Identifier: Apache-2.0
// A client process of the interface of drill.idl.

#include <CLI/CLI.hpp>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <ctime>
#include <future>
#include <iostream>
#include <memory>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

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
    DDS::Long threads = 1;
    std::size_t outstanding = 1;
    unsigned pause_us = 0;
};

class Stopwatch
{
public:
    double milliseconds() const
    {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    }

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

constexpr DDS::Long usual_instance = 1; // of a server that was not asked for by number

Proxy find_proxy(const Options& options)
{
    Proxy proxy;
    std::cout << "looking for " << options.service << std::endl;
    const Stopwatch stopwatch;
    rmi::DDS_Service::getServerProxy(options.service, options.instance, 1, proxy);
    if (proxy.get() != nullptr)
        proxy->setTimeout(options.timeout_ms);
    std::cout << "bound ms=" << stopwatch.milliseconds() << std::endl;
    return proxy;
}

void print(const std::string& title, const StreamResult& result)
{
    std::cout << title << " accepted=" << result.accepted << " replied=" << result.replied
              << " wrong=" << result.wrong << " given_up=" << result.given_up
              << " timeouts=" << result.timeouts << " not_found=" << result.not_found
              << " server_lost=" << result.server_lost << " closed=" << result.closed
              << " other_failures=" << result.other_failures << " silent=" << result.silent
              << " excess=" << result.excess << " p50_us=" << result.percentile(50)
              << " p99_us=" << result.percentile(99) << " max_us=" << result.percentile(100) << std::endl;
}

/// Its caller number is `offset` above the one in the options.
StampStream make_stream(const Options& options, const Proxy& proxy, DDS::Long offset = 0)
{
    const DDS::Long instance = options.instance < 0 ? usual_instance : options.instance;
    return {proxy, instance, options.caller + offset, options.window};
}

/// Binds, makes one call at once and waits for its reply.
int run_once(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    const auto tally = std::make_shared<drill::Tally>();
    const rmi::shared_ptr<drill::EchoHandler> handler(new drill::EchoHandler(tally, 42));
    proxy->async_echo(42, handler.get());
    std::cout << "called" << std::endl;
    const bool answered = tally->wait_for_replies(1, std::chrono::milliseconds(options.timeout_ms));
    std::cout << (answered ? "answered" : "NOT ANSWERED") << std::endl;
    return answered && tally->wrong() == 0 ? 0 : 1;
}

StreamResult flood(const Options& options, const Proxy& proxy, DDS::Long thread)
{
    StampStream stream = make_stream(options, proxy, thread);
    for (std::size_t i = 0; i < options.calls; ++i)
        stream.call();
    stream.finish(std::chrono::milliseconds(options.timeout_ms));
    return stream.take_result();
}

/// Makes so many calls on each of so many threads and waits for their replies.
int run_flood(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    std::vector<std::future<StreamResult>> results;
    results.reserve(static_cast<std::size_t>(options.threads));
    for (DDS::Long thread = 0; thread < options.threads; ++thread)
        results.push_back(std::async(std::launch::async, flood, options, proxy, thread));
    bool good = true;
    for (auto& one : results) {
        const StreamResult result = one.get();
        print("done", result);
        good = good && result.replied == options.calls && result.wrong == 0;
    }
    return good ? 0 : 1;
}

/// Makes calls until standard input ends. A line on standard input is printed with the counts since the last.
int run_load(const Options& options)
{
    StampStream stream = make_stream(options, find_proxy(options));
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

/// What its server counts of the calls of flood and load.
int run_ask(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    std::cout << "runs=" << proxy->runs() << " repeats=" << proxy->repeats()
              << " out_of_order=" << proxy->stamps_out_of_order() << " worked=" << proxy->worked()
              << std::endl;
    return 0;
}

/// Makes calls of three operations in turn, so many outstanding at a time, and prints how many of them the
/// server has run after a later one.
int run_notes(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    const auto tally = std::make_shared<drill::Tally>();
    const std::chrono::milliseconds patience(options.timeout_ms);
    for (std::size_t i = 0; i < options.calls; ++i) {
        const auto number = static_cast<DDS::Long>(i + 1);
        if (i >= options.window && !tally->wait_for_releases(i + 1 - options.window, patience))
            return 1;
        if (i % 3 == 0) {
            const rmi::shared_ptr<drill::NoteRedHandler> handler(new drill::NoteRedHandler(tally, number));
            proxy->async_note_red(number, handler.get());
        } else if (i % 3 == 1) {
            const rmi::shared_ptr<drill::NoteGreenHandler> handler(
                new drill::NoteGreenHandler(tally, number));
            proxy->async_note_green(number, handler.get());
        } else {
            const rmi::shared_ptr<drill::NoteBlueHandler> handler(new drill::NoteBlueHandler(tally, number));
            proxy->async_note_blue(number, handler.get());
        }
    }
    tally->wait_for_releases(options.calls, patience);
    std::cout << "done replied=" << tally->replies() << " wrong=" << tally->wrong()
              << " disorder=" << proxy->disorder() << std::endl;
    return 0;
}

double processor_microseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// What a call costs this process while so many in all are outstanding: first they pile up behind one at the
/// server's gate, to be opened after the line "loaded", then as many are kept outstanding.
int run_cost(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    const auto tally = std::make_shared<drill::Tally>();
    Options same_window = options;
    same_window.window = options.outstanding;
    StampStream stream = make_stream(same_window, proxy);
    const double start = processor_microseconds();
    proxy->async_gated(1, rmi::shared_ptr<drill::GatedHandler>(new drill::GatedHandler(tally, 1)).get());
    for (std::size_t i = 1; i < options.outstanding; ++i)
        stream.call();
    const std::size_t early = stream.take_result().replied;
    std::cout << "loaded" << std::endl;
    for (std::size_t i = 0; i < options.calls; ++i)
        stream.call();
    stream.finish(std::chrono::milliseconds(options.timeout_ms));
    const std::size_t calls = options.outstanding + options.calls;
    const double cost = (processor_microseconds() - start) / static_cast<double>(calls);

    const StreamResult result = stream.take_result();
    std::cout << "cost_us=" << cost << " early=" << early << " replied=" << result.replied << std::endl;
    return early == 0 && result.replied + 1 == calls ? 0 : 1;
}

/// Calls until one is answered.
void ping(const Proxy& proxy, unsigned usual_timeout_ms)
{
    proxy->setTimeout(200);
    for (bool answered = false; !answered;) {
        try {
            answered = proxy->echo(7) == 7;
        } catch (const rmi::TIMEOUT&) {
            // the server that was there may still be believed in
        } catch (const rmi::SERVICE_NOT_FOUND&) {
            drill::Tally().wait_for_replies(1, std::chrono::milliseconds(10));
        }
    }
    proxy->setTimeout(usual_timeout_ms);
    std::cout << "pong" << std::endl;
}

/// Calls until there is no server to be called.
void wait_until_missing(const Proxy& proxy, unsigned usual_timeout_ms)
{
    proxy->setTimeout(200);
    for (bool missing = false; !missing;) {
        try {
            proxy->echo(7);
        } catch (const rmi::TIMEOUT&) {
            // still believed in
        } catch (const rmi::SERVICE_NOT_FOUND&) {
            missing = true;
        }
    }
    proxy->setTimeout(usual_timeout_ms);
    std::cout << "missing" << std::endl;
}

/// Makes one call and tells how long its reply took.
void echo(const Proxy& proxy)
{
    const Stopwatch stopwatch;
    proxy->echo(7);
    std::cout << "echoed ms=" << stopwatch.milliseconds() << std::endl;
}

/// Has so many calls outstanding that wait at the server's gate, with texts of that size, until all are
/// answered or given up. Stops making more when the server has no room.
void hoard(const Proxy& proxy, std::size_t calls, std::size_t bytes)
{
    constexpr std::size_t most_timeouts = 5;
    const auto tally = std::make_shared<drill::Tally>();
    const std::string text(bytes, 'x');
    std::size_t made = 0;
    std::size_t timeouts = 0;
    for (; made < calls && timeouts < most_timeouts; ++made) {
        const rmi::shared_ptr<drill::GatedTextHandler> handler(
            new drill::GatedTextHandler(tally, static_cast<DDS::ULong>(bytes)));
        try {
            proxy->async_gated_text(DDS::string_dup(text.c_str()), handler.get());
        } catch (const rmi::TIMEOUT&) {
            ++timeouts;
        }
    }
    std::cout << "hoarded accepted=" << made - timeouts << " timeouts=" << timeouts << std::endl;
    tally->wait_for_releases(made, std::chrono::hours(1));
    std::cout << "released replied=" << tally->replies() << " wrong=" << tally->wrong() << std::endl;
}

/// Makes calls that take so long, and waits for none. Stops making more when the server has no room.
void queue(const Proxy& proxy, std::size_t calls, DDS::Long milliseconds)
{
    const auto tally = std::make_shared<drill::Tally>();
    std::size_t accepted = 0;
    try {
        for (; accepted < calls; ++accepted) {
            const rmi::shared_ptr<drill::WorkHandler> handler(new drill::WorkHandler(tally, milliseconds));
            proxy->async_work(milliseconds, handler.get());
        }
    } catch (const rmi::TIMEOUT&) {
        // no room for more
    }
    std::cout << "queued accepted=" << accepted << std::endl;
}

/// Makes calls whose reply hooks throw.
void throw_from_hooks(const Proxy& proxy, std::size_t calls)
{
    const auto tally = std::make_shared<drill::Tally>();
    for (std::size_t i = 0; i < calls; ++i) {
        const rmi::shared_ptr<drill::EchoHandler> handler(
            new drill::EchoHandler(tally, 1, [] { throw std::runtime_error("on purpose"); }));
        proxy->async_echo(1, handler.get());
    }
    tally->wait_for_releases(calls);
    std::cout << "thrown replied=" << tally->replies() << std::endl;
}

/// Makes calls whose implementation throws.
void make_implementation_throw(const Proxy& proxy, std::size_t calls)
{
    const auto tally = std::make_shared<drill::Tally>();
    for (std::size_t i = 0; i < calls; ++i) {
        const auto value = static_cast<DDS::Long>(i);
        const rmi::shared_ptr<drill::FailHandler> handler(new drill::FailHandler(tally, value));
        proxy->async_fail(value, handler.get());
    }
    tally->wait_for_releases(calls);
    std::cout << "failed replied=" << tally->replies() << std::endl;
}

void obey(const Options& options, const Proxy& proxy, const std::string& command)
{
    std::istringstream words(command);
    std::string verb;
    std::size_t calls = 0;
    std::size_t amount = 0;
    words >> verb >> calls >> amount;
    if (verb == "ping")
        ping(proxy, options.timeout_ms);
    else if (verb == "missing")
        wait_until_missing(proxy, options.timeout_ms);
    else if (verb == "echo")
        echo(proxy);
    else if (verb == "hoard")
        hoard(proxy, calls, amount);
    else if (verb == "queue")
        queue(proxy, calls, static_cast<DDS::Long>(amount));
    else if (verb == "throw")
        throw_from_hooks(proxy, calls);
    else if (verb == "fail")
        make_implementation_throw(proxy, calls);
    else
        std::cout << "unknown command" << std::endl;
}

/// Does what standard input says, line by line.
int run_obey(const Options& options)
{
    const Proxy proxy = find_proxy(options);
    std::string line;
    while (std::getline(std::cin, line))
        obey(options, proxy, line);
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

    const auto* const once = app.add_subcommand("once", "Make one call right after binding");
    CLI::App* const flood_mode = app.add_subcommand("flood", "Make a number of calls");
    flood_mode->add_option("--calls", options.calls, "How many, on each thread")->capture_default_str();
    flood_mode->add_option("--threads", options.threads, "Threads that share the proxy")
        ->capture_default_str();
    CLI::App* const load = app.add_subcommand(
        "load", "Make calls until standard input ends; each line on it asks for the counts since the last");
    load->add_option("--pause", options.pause_us, "Microseconds between calls")->capture_default_str();
    const auto* const ask = app.add_subcommand("ask", "Print how many calls the server has run");
    CLI::App* const notes = app.add_subcommand("notes", "Make a number of calls of three operations in turn");
    notes->add_option("--calls", options.calls, "How many")->capture_default_str();
    CLI::App* const cost = app.add_subcommand("cost", "Print what a call costs beside outstanding ones");
    cost->add_option("--calls", options.calls, "How many to measure")->capture_default_str();
    cost->add_option("--outstanding", options.outstanding, "How many are outstanding in all")
        ->capture_default_str();
    app.add_subcommand("obey", "Obey lines on standard input: ping, missing, echo, hoard <calls> <bytes>, "
                               "queue <calls> <milliseconds>, throw <calls>, fail <calls>");
    CLI11_PARSE(app, argc, argv);

    const std::array<std::pair<const CLI::App*, int (*)(const Options&)>, 6> modes{{{once, run_once},
                                                                                    {flood_mode, run_flood},
                                                                                    {load, run_load},
                                                                                    {ask, run_ask},
                                                                                    {notes, run_notes},
                                                                                    {cost, run_cost}}};
    for (const auto& [subcommand, mode] : modes)
        if (subcommand->parsed())
            return run(mode, options);
    return run(run_obey, options);
}
