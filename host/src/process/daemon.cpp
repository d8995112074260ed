// SPDX-License-Identifier: Apache-2.0
#include "process/daemon.h"

#include <sys/socket.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>

#include "http/console_routes.h"
#include "http/event_stream.h"
#include "plugins/health_report.h"
#include "process/service_manager.h"
#include "system/message_log.h"

namespace zorbd {
namespace {

/// More than one, so that a second processor does not idle when all calls are quick: those run on a server's
/// own thread.
unsigned servers_per_listener()
{
    constexpr unsigned most = 4;
    return std::clamp(std::thread::hardware_concurrency(), 1U, most);
}

/// How long a plug-in that looks for its service may take to end that.
constexpr std::chrono::milliseconds end_of_lookup{500};
/// How long a listener may take to see the end of its stream.
constexpr std::chrono::milliseconds end_of_streams{500};

/// Each plug-in can have its threads taken, and then there is one for whoever asks for none of them.
std::size_t max_threads(const Options& options)
{
    return options.threads * options.plugins.size() + 1;
}

/// One plug-in alone must not make the others' callers hear that the server is busy.
std::size_t waiting_calls(const Options& options)
{
    return options.plugins.size() > 1 ? options.max_outstanding / 2 : options.max_outstanding;
}

} // namespace

Daemon::Daemon(const Options& options)
    : m_feed(options.events), m_streams(m_feed, options.plugins.size() == 1 ? options.plugins.front() : ""),
      m_access_log(options.access_log, m_streams.output()), m_calls(m_metrics, m_feed, m_access_log.lines()),
      m_plugins(options.plugins, options.binding_pauses, options.check_params),
      m_dispatcher(m_plugins, options.dispatch), m_connections(options.connections),
      m_loads(options.plugins, options.threads, waiting_calls(options)),
      m_workers(options.threads, max_threads(options), options.max_outstanding),
      m_call_timeout(options.connections.call)
{
    if (options.tcp)
        m_tcp.emplace(*options.tcp);
    if (options.unix_socket)
        m_unix.emplace(*options.unix_socket, options.unix_access);
    if (options.token_file)
        m_tokens = std::make_shared<TokenStore>(*options.token_file);
    if (options.tls)
        m_tls.emplace(*options.tls);
    m_inherited = take_inherited_sockets();
    m_plugins.set_servers(addresses());
    m_plugins.start();
    add_routes(options.console);
    if (m_tcp)
        add_listener(m_tcp->fd(),
                     {m_tokens, m_tcp->address(), options.server_names, options.max_body, scheme()},
                     m_tls ? &*m_tls : nullptr);
    if (m_unix) // its file mode says who may use it, so it asks for no token
        add_listener(m_unix->fd(), {nullptr, std::nullopt, {}, options.max_body}, nullptr);
    for (const FileDescriptor& socket : m_inherited)
        add_inherited(socket.get(), options);
    m_acceptor.emplace(m_listeners, m_connections, m_metrics);
}

void Daemon::add_routes(bool console)
{
    m_routes.add({"POST", "/", TakesCalls()});
    m_routes.add({"GET", "/healthz", [this](const RequestHead&) {
                      HealthReport report = report_health(m_plugins, m_loads, m_streams.health());
                      return HttpResponse{report.healthy ? 200U : 503U, std::move(report.json)};
                  }});
    m_routes.add({"GET", "/metrics", [this](const RequestHead&) {
                      return HttpResponse{200, metrics_page(), "text/plain; version=0.0.4"};
                  }});
    m_routes.add({"GET", "/events", event_stream(m_feed)});
    if (console)
        add_console_routes(m_routes);
}

/// The rules for what is named with --listen and --unix-socket hold for what the service manager listens on.
void Daemon::add_inherited(int socket, const Options& options)
{
    const auto address = address_of(socket);
    if (!address)
        return add_listener(socket, {nullptr, std::nullopt, {}, options.max_body}, nullptr);
    if (!is_loopback(*address))
        check_reachable(options, to_text(*address));
    add_listener(socket, {m_tokens, address, options.server_names, options.max_body, scheme()},
                 m_tls ? &*m_tls : nullptr);
}

void Daemon::add_listener(int socket, AccessRules rules, const TlsContext* tls)
{
    const bool needs_token = rules.tokens != nullptr;
    m_gates.push_back(std::make_unique<RequestGate>(m_routes, std::move(rules)));
    const auto make_transport = [tls](FileDescriptor accepted) -> std::unique_ptr<Transport> {
        if (tls != nullptr)
            return tls->make_transport(std::move(accepted));
        return std::make_unique<PlainTransport>(std::move(accepted));
    };
    Listener listener{socket, needs_token, tls == nullptr, make_transport, {}};
    for (unsigned i = 0; i < servers_per_listener(); ++i) {
        m_servers.push_back(std::make_unique<HttpServer>(
            *m_gates.back(),
            HttpServices{{m_dispatcher, m_workers, m_loads, m_calls}, m_metrics, m_call_timeout}));
        listener.servers.push_back(m_servers.back().get());
    }
    m_listeners.push_back(std::move(listener));
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
    text.begin("zorbd_plugin_stuck_calls", "gauge", "Calls that run for longer than --call-timeout.");
    for (const PluginStatus& plugin : m_plugins.status())
        text.add(static_cast<double>(m_loads.of(plugin.file).stuck()), metrics_label("plugin", plugin.file));
    return text.text();
}

std::string Daemon::scheme() const
{
    return m_tls ? "https" : "http";
}

std::vector<std::string> Daemon::addresses() const
{
    std::vector<std::string> all;
    if (m_tcp)
        all.push_back(scheme() + "://" + to_text(m_tcp->address()) + '/');
    if (m_unix)
        all.push_back("unix:" + m_unix->path());
    for (const FileDescriptor& socket : m_inherited) {
        const auto address = address_of(socket.get());
        all.push_back(address ? scheme() + "://" + to_text(*address) + '/' : "unix:" + path_of(socket.get()));
    }
    return all;
}

std::string Daemon::where() const
{
    std::string text;
    for (const std::string& address : addresses())
        text += (text.empty() ? "" : " and ") + address;
    return text;
}

void Daemon::reload(const Options& options)
{
    const auto attempt = [](auto& part, const std::string& done) {
        try {
            part.reload();
            log_message(done);
        } catch (const std::exception& error) {
            log_message(std::string(error.what()) + "; what was used before stays in use");
        }
    };
    if (m_tls)
        attempt(*m_tls, "TLS certificate and key have been read again");
    if (m_tokens != nullptr)
        attempt(*m_tokens, "tokens have been read again");
    if (m_access_log.is_file())
        attempt(m_access_log, "the access log has been opened anew");
    for (const auto& gate : m_gates)
        gate->set_server_names(options.server_names);
}

void Daemon::refuse_calls()
{
    m_acceptor.reset();
    for (const Listener& listener : m_listeners)
        shutdown(listener.socket, SHUT_RDWR); // refuses connections while the descriptor stays valid
    m_connections.close();
    m_feed.close();
    m_plugins.stop_binding();
}

Daemon::Finish Daemon::finish(std::chrono::steady_clock::time_point deadline)
{
    // A call outlives its connection when the client leaves.
    if (!m_connections.wait_none(ConnectionPhase::working, deadline) || !m_workers.wait_idle(deadline))
        return Finish::call_runs;
    if (!m_plugins.wait_binding_over(std::min(deadline, std::chrono::steady_clock::now() + end_of_lookup)))
        return Finish::factory_runs;
    m_connections.wait_none(ConnectionPhase::sending, deadline); // a client that does not read is simply cut
    m_connections.wait_none(ConnectionPhase::listening,
                            std::min(deadline, std::chrono::steady_clock::now() + end_of_streams));
    return Finish::done;
}

} // namespace zorbd
