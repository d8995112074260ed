// SPDX-License-Identifier: Apache-2.0
#include <csignal>

#include <exception>
#include <iostream>
#include <string>
#include <variant>

#include "network/clock.h"
#include "network/sensor_network.h"
#include "process/call_log.h"
#include "process/exit_code.h"
#include "process/options.h"
#include "process/reply_delay.h"
#include "process/service_host.h"
#include "process/stop_signals.h"
#include "process/stop_watcher.h"
#include "process/varnel_service.h"

namespace {

using namespace varnel;

std::string ready_line(const Options& options)
{
    return "ready: service " + options.service + ", instance " + std::to_string(options.instance);
}

SensorNetwork::RevertListener revert_line(CallLog& log)
{
    return [&log](MacAddress node, const std::string& config) {
        log.note("configuration of " + node.text() + " reverted to " + quoted_text(config));
    };
}

/// Returns when a signal has stopped it.
void run_until_stopped(const ServerRuntime& runtime, const StopSignals& signals,
                       const StopWatcher::Events& events)
{
    const StopWatcher watcher(runtime.handle(), signals, events);
    runtime.handle()->run();
}

void serve(const Options& options)
{
    const StopSignals signals;
    CallLog log(std::cout);
    SteadyClock clock;
    SensorNetwork network(clock, revert_line(log));
    if (options.is_commissioned)
        network.start_commissioned(options.nodes);
    ReplyDelay delay(options.delay);
    const ServerRuntime runtime(options.threads);
    const RegisteredService registration(make_varnel_service(network, log, delay), options.service,
                                         options.instance);
    run_until_stopped(runtime, signals, {[&] { log.note(ready_line(options)); }, [&] { delay.end(); }});
}

int serve_or_explain(const Options& options)
{
    try {
        serve(options);
        return exit_done;
    } catch (const std::exception& error) {
        std::cerr << "varnelde: " << error.what() << std::endl;
        return exit_cannot_serve;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    // A reader of our output that goes away must not end the service.
    std::signal(SIGPIPE, SIG_IGN);
    const std::variant<Options, int> parsed = parse_options(argc, argv);
    if (const int* const exit_code = std::get_if<int>(&parsed))
        return *exit_code;
    return serve_or_explain(std::get<Options>(parsed));
}
