// SPDX-License-Identifier: Apache-2.0
#include "process/daemon.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "plugins/health_report.h"

namespace zorbd {
namespace {

/// The origins that a page of this server itself would have.
std::vector<std::string> own_origins(const TcpAddress& address)
{
    std::vector<std::string> origins = {"http://" + to_text(address)};
    if (is_loopback(address))
        origins.push_back("http://localhost:" + std::to_string(address.port));
    return origins;
}

/// More than one, so that a second processor does not idle when all calls are quick: those run on a server's
/// own thread.
unsigned servers_per_listener()
{
    constexpr unsigned most = 4;
    return std::clamp(std::thread::hardware_concurrency(), 1U, most);
}

/// How long a listener may take to see the end of its stream.
constexpr std::chrono::milliseconds end_of_streams{500};

std::optional<BearerToken> read_token(const std::optional<std::string>& file)
{
    if (!file)
        return std::nullopt;
    return BearerToken::from_file(*file);
}

} // namespace

Daemon::Daemon(const Options& options)
    : m_feed(options.events), m_streams(m_feed, options.plugins.size() == 1 ? options.plugins.front() : ""),
      m_access_log(options.access_log, m_streams.output()), m_calls(m_metrics, m_feed, m_access_log.lines()),
      m_plugins(options.plugins, options.binding_pauses), m_dispatcher(m_plugins, options.dispatch),
      m_connections(options.connections), m_workers(options.threads, options.max_outstanding)
{
    if (options.tcp)
        m_tcp.emplace(*options.tcp);
    if (options.unix_socket)
        m_unix.emplace(*options.unix_socket, options.unix_access);
    std::optional<BearerToken> token = read_token(options.token_file);
    m_plugins.start();
    if (m_tcp)
        serve(m_tcp->fd(),
              {std::move(token), own_origins(m_tcp->address()), options.max_body, options.console});
    if (m_unix) // its file mode says who may use it, so it asks for no token
        serve(m_unix->fd(), {std::nullopt, {}, options.max_body, options.console});
}

void Daemon::serve(int socket, const AccessRules& rules)
{
    const HttpServices services{m_dispatcher,
                                m_workers,
                                m_connections,
                                m_feed,
                                m_metrics,
                                m_calls,
                                [this] { return report_health(m_plugins, m_streams.health()); },
                                [this] { return metrics_page(); }};
    for (unsigned i = 0; i < servers_per_listener(); ++i)
        m_servers.push_back(std::make_unique<HttpServer>(socket, RequestGate(rules), services));
}

std::string Daemon::metrics_page()
{
    MetricsText text;
    m_metrics.write(text);
    text.begin("zorbd_calls_outstanding", "gauge", "Requests that wait or run.");
    text.add(static_cast<double>(m_workers.outstanding()));
    text.begin("zorbd_connections", "gauge", "Client connections that are open.");
    text.add(static_cast<double>(m_connections.count()));
    text.begin("zorbd_listeners", "gauge", "Clients that take events.");
    text.add(static_cast<double>(m_feed.listener_count()));
    m_streams.write(text);
    text.begin("zorbd_plugin_bound", "gauge", "Whether a plug-in is bound (1) or waits for its service (0).");
    for (const PluginStatus& plugin : m_plugins.status())
        text.add(plugin.bound ? 1 : 0, metrics_label("plugin", plugin.file));
    return text.text();
}

std::string Daemon::where() const
{
    std::string text;
    if (m_tcp)
        text = "http://" + to_text(m_tcp->address()) + '/';
    if (m_unix)
        text += (text.empty() ? "unix:" : " and unix:") + m_unix->path();
    return text;
}

void Daemon::refuse_calls()
{
    for (const auto& server : m_servers)
        server->quiesce();
    m_connections.close();
    m_feed.close();
    m_plugins.stop_binding();
}

bool Daemon::finish(std::chrono::steady_clock::time_point deadline)
{
    // A call outlives its connection when the client leaves.
    if (!m_connections.wait_none(ConnectionPhase::working, deadline) || !m_workers.wait_idle(deadline) ||
        !m_plugins.wait_binding_over(deadline))
        return false;
    m_connections.wait_none(ConnectionPhase::sending, deadline); // a client that does not read is simply cut
    m_connections.wait_none(ConnectionPhase::listening,
                            std::min(deadline, std::chrono::steady_clock::now() + end_of_streams));
    return true;
}

} // namespace zorbd
