// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_DAEMON_H
#define ZORBD_DAEMON_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "events/event_feed.h"
#include "http/acceptor.h"
#include "http/http_server.h"
#include "http/listen_socket.h"
#include "http/request_gate.h"
#include "http/route_table.h"
#include "http/tls_context.h"
#include "http/worker_pool.h"
#include "jsonrpc/dispatcher.h"
#include "plugins/plugin_load.h"
#include "plugins/plugin_set.h"
#include "process/access_log.h"
#include "process/options.h"
#include "process/standard_streams.h"

namespace zorbd {

/// All parts of the host, put together. The members stand in the order in which they start; they end in
/// reverse.
class Daemon
{
public:
    /// Loads the plug-ins, opens the sockets, starts to bind and to serve. Throws what any of them throws.
    explicit Daemon(const Options& options);

    /// Where it serves, for people.
    std::string where() const;

    /// Takes no further connections and calls, and makes no further attempt to bind. Does not wait.
    void refuse_calls();

    /// How far finish() has come.
    enum class Finish { done, call_runs, factory_runs };

    /// After refuse_calls(): waits for the calls that run and for their responses to be sent, until the
    /// deadline, and for a short time for a plug-in's factory. Unless all is done the object must not be
    /// destroyed.
    Finish finish(std::chrono::steady_clock::time_point deadline);

    /// Reads again what can be read again without a restart: TLS certificates and tokens, from the files that
    /// were named at the start, and the names of the server; opens the access log anew. Says so, or what is
    /// wrong: that stays as it was.
    void reload(const Options& options);

    /// Whether calls can get on: no plug-in has all of its threads in calls that take too long.
    bool makes_progress() const { return !m_loads.is_any_blocked(); }

    /// Waits until what was written to the standard streams has left the process, as long as it is read.
    void flush_streams() const { m_streams.flush(); }

private:
    std::vector<std::string> addresses() const;
    std::string metrics_page();
    void add_routes(bool console);
    void add_listener(int socket, AccessRules rules, const TlsContext* tls);
    std::string scheme() const;
    void add_inherited(int socket, const Options& options);

    EventFeed m_feed;
    StandardStreams m_streams;
    Metrics m_metrics;
    AccessLog m_access_log;
    CallLog m_calls;
    PluginSet m_plugins;
    std::optional<TcpListener> m_tcp;
    std::optional<UnixListener> m_unix;
    std::vector<FileDescriptor> m_inherited; ///< listening sockets of the service manager
    Dispatcher m_dispatcher;
    ConnectionRegistry m_connections;
    PluginLoads m_loads;
    WorkerPool m_workers;
    const std::chrono::milliseconds m_call_timeout;
    RouteTable m_routes;
    std::shared_ptr<TokenStore> m_tokens;
    std::optional<TlsContext> m_tls;
    std::vector<std::unique_ptr<RequestGate>> m_gates;
    std::vector<std::unique_ptr<HttpServer>> m_servers;
    std::vector<Listener> m_listeners;
    std::optional<Acceptor> m_acceptor;
};

} // namespace zorbd

#endif
