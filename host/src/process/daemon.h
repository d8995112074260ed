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

    /// Whether there is something that reload() reads: TLS certificates or tokens.
    bool can_reload() const { return m_tls || m_tokens != nullptr; }
    /// Reads it again, and says so, or what is wrong with it; what cannot be read stays as it was.
    void reload();

    /// Takes no further connections and calls, and makes no further attempt to bind. Does not wait.
    void refuse_calls();

    /// After refuse_calls(): waits for the calls that run and for their responses to be sent. False when a
    /// call, or a plug-in's factory, was still running at the deadline: the object must not be destroyed
    /// then.
    bool finish(std::chrono::steady_clock::time_point deadline);

    /// Waits until what was written to the standard streams has left the process, as long as it is read.
    void flush_streams() const { m_streams.flush(); }

private:
    std::vector<std::string> addresses() const;
    std::string metrics_page();
    void add_routes(bool console);
    void add_listener(int socket, AccessRules rules, const TlsContext* tls);
    std::string scheme() const;

    EventFeed m_feed;
    StandardStreams m_streams;
    Metrics m_metrics;
    AccessLog m_access_log;
    CallLog m_calls;
    PluginSet m_plugins;
    std::optional<TcpListener> m_tcp;
    std::optional<UnixListener> m_unix;
    Dispatcher m_dispatcher;
    ConnectionRegistry m_connections;
    WorkerPool m_workers;
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
