// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HTTP_SERVER_H
#define ZORBD_HTTP_SERVER_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "events/call_log.h"
#include "events/metrics.h"
#include "http/call_exchange.h"
#include "http/connection_registry.h"
#include "http/http_connection.h"
#include "http/io_threads.h"
#include "http/request_gate.h"
#include "http/transport.h"
#include "http/worker_pool.h"
#include "jsonrpc/dispatcher.h"
#include "system/file_descriptor.h"

namespace zorbd {

/// What all servers share. All of it must outlive them.
struct HttpServices
{
    CallServices calls;
    Metrics& metrics;
    std::chrono::milliseconds call_timeout; ///< for what a client is told
};

/// Serves HTTP on the connections that it is given. Its I/O threads handle them all and run quick calls;
/// others run on the workers.
class HttpServer : public ConnectionServices, public DoneCalls
{
public:
    /// Starts to serve. `gate` must outlive it. Throws std::system_error.
    HttpServer(const RequestGate& gate, const HttpServices& services);
    /// Closes all connections. Waits for calls that still run.
    ~HttpServer() override;
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Serves a further connection. Any thread.
    void take_in(std::unique_ptr<Transport> transport, ConnectionRegistry::Place place);

private:
    /// What other threads have for the I/O thread that leads.
    struct Inbox
    {
        std::vector<std::unique_ptr<HttpConnection>> connections;
        CallExchange* done = nullptr;             ///< owned; each has the next one
        std::vector<const HttpConnection*> woken; ///< some of them may be gone
        bool has_overdue = false;

        bool empty() const { return connections.empty() && done == nullptr && woken.empty() && !has_overdue; }
    };

    const RequestGate& gate() const override { return m_gate; }
    CallExchange* start_call(HttpConnection& connection, std::string body,
                             std::shared_ptr<const Token> token) override;
    void count_refusal(unsigned status) noexcept override;
    std::function<void()> wake_of(const HttpConnection& connection) override;
    std::optional<std::string> give_up(CallExchange& call) override;
    void note_overdue() noexcept override;
    void take_back(CallExchange& done) noexcept override;

    template <class Put>
    void put(const Put& put_in);
    void handle_events();
    void empty_inbox();
    void handle(Inbox& inbox);
    void await_events();
    void serve(std::unique_ptr<HttpConnection> connection) noexcept;
    template <class Step>
    void advance(HttpConnection& connection, const Step& step) noexcept;
    void wake() const;

    const RequestGate& m_gate;
    const HttpServices m_services;
    const FileDescriptor m_epoll;
    const FileDescriptor m_wake_up; ///< an eventfd
    std::unordered_map<const HttpConnection*, std::unique_ptr<HttpConnection>>
        m_connections; ///< the leader's
    Inbox m_handled;   ///< kept for its memory; the leader's
    std::mutex m_mutex;
    std::condition_variable m_call_ended;
    Inbox m_inbox;                           ///< guarded by m_mutex
    std::size_t m_calls = 0;                 ///< that have not been taken back; guarded by m_mutex
    std::atomic<bool> m_leader_waits{false}; ///< and must be woken; set with m_mutex held
    std::optional<IoThreads> m_threads;
};

} // namespace zorbd

#endif
