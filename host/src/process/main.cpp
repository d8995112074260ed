// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>
#include <string.h> // strsignal is POSIX
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <variant>

#include "process/daemon.h"
#include "process/exit_code.h"
#include "process/open_files.h"
#include "process/options.h"
#include "process/service_manager.h"
#include "process/standard_streams.h"
#include "process/stop_signals.h"
#include "process/token_command.h"
#include "system/message_log.h"
#include "system/version.h"
#include "zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"

namespace {

using namespace zorbd;

/// What the process has open besides its connections: sockets of the middleware, libraries, files of
/// plug-ins.
constexpr std::size_t other_files = 192;

/// What one thread allocates here another one frees. With glibc's default, an arena for each thread, such
/// memory is spread over all of them and creeps up for a million calls; with two it stays where it was.
void keep_memory_together()
{
    ::mallopt(M_ARENA_MAX, 2);
}

/// Prepares what holds for the whole process.
void prepare(const Options& options)
{
    keep_memory_together();
    std::signal(SIGPIPE, SIG_IGN);
    allow_open_files(options.connections.total + other_files);
    zeb::api::mdw::setServiceDiscoveryTimeout(options.discovery_timeout);
}

void announce_ready(const Daemon& daemon)
{
    log_message("ready on " + daemon.where());
    notify_service_manager("READY=1\nSTATUS=Serving on " + daemon.where());
}

void announce_stop(int signal)
{
    log_message(std::string("stopping after ") + ::strsignal(signal) + "; no further calls are taken");
    notify_service_manager("STOPPING=1");
}

/// A call that will not end still uses its plug-in, so nothing can be taken down in order any more.
[[noreturn]] void stop_out_of_order(const Daemon& daemon)
{
    log_message("a call or a plug-in's factory did not end in time; it is cut off (--stop-timeout)");
    daemon.flush_streams();
    _exit(exit_not_in_order);
}

/// Reads files again when SIGHUP asks for it; without such files it stops as the others do.
int await_stop(const StopSignals& signals, Daemon& daemon)
{
    int signal = signals.wait();
    while (signal == SIGHUP && daemon.can_reload()) {
        daemon.reload();
        signal = signals.wait();
    }
    signals.let_through();
    return signal;
}

int serve_until_stopped(const Options& options)
{
    StopSignals signals;
    prepare(options);
    Daemon daemon(options);
    announce_ready(daemon);
    const int signal = await_stop(signals, daemon);
    daemon.refuse_calls();
    announce_stop(signal);
    if (!daemon.finish(std::chrono::steady_clock::now() + options.stop_timeout))
        stop_out_of_order(daemon);
    return exit_stopped;
}

} // namespace

int main(int argc, char** argv)
{
    zorbd::hold_closed_standard_streams();
    try {
        if (argc > 1 && std::string_view(argv[1]) == "token")
            return zorbd::run_token_command(argc - 1, argv + 1, std::cout);
        const auto read = zorbd::read_options(argc, argv, std::cout);
        if (const int* code = std::get_if<int>(&read))
            return *code;
        return serve_until_stopped(std::get<zorbd::Options>(read));
    } catch (const std::exception& error) {
        zorbd::log_message(error.what());
        return zorbd::exit_start_failed;
    }
}
