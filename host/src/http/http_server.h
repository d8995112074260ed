// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HTTP_SERVER_H
#define ZORBD_HTTP_SERVER_H

#include <functional>
#include <memory>
#include <optional>

#include "events/call_log.h"
#include "events/event_feed.h"
#include "events/metrics.h"
#include "http/connection_registry.h"
#include "http/io_threads.h"
#include "http/request_gate.h"
#include "http/worker_pool.h"
#include "jsonrpc/dispatcher.h"
#include "plugins/health_report.h"
#include "system/file_descriptor.h"

struct MHD_Daemon;

namespace zorbd {

/// What all listeners share. All of it must outlive them.
struct HttpServices
{
    const Dispatcher& dispatcher;
    WorkerPool& workers;
    ConnectionRegistry& connections;
    EventFeed& events;
    Metrics& metrics;
    CallLog& calls;
    std::function<HealthReport()> health;
    std::function<std::string()> metrics_page;
};

/// Serves HTTP on one listening socket. Its I/O threads handle all its connections and run quick calls;
/// others run on the workers; a connection sleeps meanwhile.
class HttpServer
{
public:
    /// Starts to serve. `listening_socket` must stay open until the server is destroyed. Throws
    /// std::runtime_error.
    HttpServer(int listening_socket, RequestGate gate, const HttpServices& services);
    /// Closes all connections. None may be working (see ConnectionRegistry).
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Takes no further connections.
    void quiesce();

private:
    friend struct HttpCallbacks;

    void handle_events(bool may_be_woken);
    void await_events() const;
    void wake() const;
    struct Stop
    {
        void operator()(MHD_Daemon* daemon) const noexcept;
    };

    const RequestGate m_gate;
    const HttpServices m_services;
    std::unique_ptr<MHD_Daemon, Stop> m_daemon;
    const FileDescriptor m_wake_up; ///< an eventfd
    bool m_is_busy = false;         ///< the last round had something to do; the leading I/O thread's own
    std::optional<IoThreads> m_threads;
};

} // namespace zorbd

#endif
