// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_OPTIONS_H
#define ZORBD_OPTIONS_H

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "events/event_feed.h"
#include "http/connection_registry.h"
#include "http/listen_socket.h"
#include "http/tls_context.h"
#include "jsonrpc/dispatcher.h"
#include "plugins/plugin.h"

namespace zorbd {

/// Everything that can be set from outside, checked.
struct Options
{
    std::vector<std::string> plugins;
    std::optional<TcpAddress> tcp;
    std::optional<std::string> unix_socket;
    UnixSocketAccess unix_access;
    std::optional<std::string> token_file;
    std::vector<std::string> server_names;
    std::optional<TlsFiles> tls;
    bool allow_plain_http = false; ///< also beyond loopback

    std::size_t threads = 4;
    std::size_t max_outstanding = 128;
    std::size_t max_body = 1U << 20U;
    DispatchLimits dispatch;
    ConnectionLimits connections;

    EventLimits events;
    std::optional<std::string> access_log;
    bool console = true;
    bool check_params = true;

    int discovery_timeout = 10; ///< seconds; -1 for ever
    BindingPauses binding_pauses;
    std::chrono::milliseconds stop_timeout{15000};

    /// What was given, by the option's name.
    std::map<std::string, std::string> settings;
};

/// What must be given for an address that others can reach. Throws CLI::ValidationError, a
/// std::runtime_error.
void check_reachable(const Options& options, const std::string& address);

/// Reads the command line and the configuration file that it may name. Gives the exit code instead when the
/// program is to end: after --help and --version, which go to `output`, and after a mistake, which is told of
/// on standard error.
std::variant<Options, int> read_options(int argc, const char* const* argv, std::ostream& output);

} // namespace zorbd

#endif
