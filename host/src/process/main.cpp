// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>
#include <string.h> // strsignal is POSIX
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <variant>

#include "process/daemon.h"
#include "process/exit_code.h"
#include "process/open_files.h"
#include "process/options.h"
#include "process/process_signals.h"
#include "process/service_manager.h"
#include "process/standard_streams.h"
#include "process/token_command.h"
#include "system/message_log.h"
#include "system/version.h"
#include "zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"

namespace {

using namespace zorbd;

/// What the process has open besides its connections: sockets of the middleware, libraries, files of
/// plug-ins.
constexpr std::size_t other_files = 192;

constexpr int large_block = 128 * 1024;

/// What one thread allocates here another one frees. With glibc's default, an arena for each thread, such
/// memory is spread over all of them and creeps up for a million calls; with two it stays where it was.
/// Blocks of large_block and more are mapped one by one, and given back as they are freed; with glibc's
/// default, which grows with what is freed, an answer of some megabytes would stay with the process.
void keep_memory_together()
{
    ::mallopt(M_ARENA_MAX, 2);
    ::mallopt(M_MMAP_THRESHOLD, large_block);
}

struct CommandLine
{
    int count;
    const char* const* arguments;
};

/// Prepares what holds for the whole process.
void prepare(const Options& options)
{
    keep_memory_together();
    std::signal(SIGPIPE, SIG_IGN);
    allow_open_files(options.connections.total + options.connections.unix_total + other_files);
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

/// Code of a plug-in that will not end still uses it, so nothing can be taken down in order any more.
[[noreturn]] void stop_out_of_order(const Daemon& daemon, const char* message, int code)
{
    log_message(message);
    daemon.flush_streams();
    _exit(code);
}

/// Ends the process as far as it can be ended in order.
int stop(Daemon& daemon, std::chrono::milliseconds timeout)
{
    switch (daemon.finish(std::chrono::steady_clock::now() + timeout)) {
    case Daemon::Finish::done:
        return exit_stopped;
    case Daemon::Finish::factory_runs: // nobody waits for what it may find
        stop_out_of_order(daemon, "a plug-in still looks for its service; that is cut off", exit_stopped);
    case Daemon::Finish::call_runs:
        break;
    }
    stop_out_of_order(daemon, "a call did not end in time; it is cut off (--stop-timeout)",
                      exit_not_in_order);
}

/// Says which settings have another value than at the start and keep it until the next one.
void log_settings_that_wait(const Options& before, const Options& now)
{
    for (const auto& [name, value] : now.settings) {
        const auto found = before.settings.find(name);
        if (name != "--server-name" && found != before.settings.end() && found->second != value)
            log_message("the new value of " + name + " needs a restart");
    }
}

/// What is wrong with the new settings leaves the old ones as they are.
void reload(Daemon& daemon, const Options& before, const CommandLine& command_line)
{
    notify_reload();
    try {
        const auto read = read_options(command_line.count, command_line.arguments, std::cout);
        if (const auto* options = std::get_if<Options>(&read)) {
            daemon.reload(*options);
            log_message("the configuration has been read again");
            log_settings_that_wait(before, *options);
        }
    } catch (const std::exception& error) {
        log_message(std::string("all stays as it was: ") + error.what());
    }
    notify_service_manager("READY=1");
}

/// Serves until a signal to stop comes, which it returns. The watchdog is fed as long as calls can get on.
int serve(Daemon& daemon, ProcessSignals& signals, const Options& options, const CommandLine& command_line)
{
    const auto interval = watchdog_interval();
    for (;;) {
        const auto signal = signals.wait(interval);
        if (signal && *signal != SIGHUP)
            return *signal;
        if (signal)
            reload(daemon, options, command_line);
        if (interval && daemon.makes_progress())
            notify_service_manager("WATCHDOG=1");
    }
}

int run(const Options& options, const CommandLine& command_line)
{
    ProcessSignals signals;
    prepare(options);
    Daemon daemon(options);
    announce_ready(daemon);
    const int signal = serve(daemon, signals, options, command_line);
    signals.let_end_process();
    daemon.refuse_calls();
    announce_stop(signal);
    return stop(daemon, options.stop_timeout);
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
        return run(std::get<zorbd::Options>(read), {argc, argv});
    } catch (const std::bad_alloc&) {
        zorbd::log_message("there is not enough memory (ulimit -v, MemoryMax=)");
        return zorbd::exit_start_failed;
    } catch (const std::exception& error) {
        zorbd::log_message(error.what());
        return zorbd::exit_start_failed;
    }
}
