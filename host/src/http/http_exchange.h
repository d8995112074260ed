// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HTTP_EXCHANGE_H
#define ZORBD_HTTP_EXCHANGE_H

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "console/console_files.h"
#include "http/http_server.h"

struct MHD_Connection;

namespace zorbd {

/// One HTTP request and its response. It belongs to its connection's I/O thread; while its call runs, to that
/// and to the thread that runs the call.
class HttpExchange : public Work
{
public:
    HttpExchange(MHD_Connection& connection, ConnectionRegistry::Connection& registered,
                 const RequestGate& gate, const HttpServices& services, IoThreads& threads);

    /// To be called at the end of the request, however it comes: destroys the exchange, or lets a call that
    /// still runs do that.
    static void release(std::unique_ptr<HttpExchange> exchange);

    /// Decides on the request by its head. A refusal is answered at once; the connection is closed after it,
    /// so the body need not be read.
    void begin(const RequestHead& head);
    /// Takes a part of the body in.
    void receive(const char* data, std::size_t size);
    /// To be called when the whole request is here, and again as long as there is no response: submits the
    /// call, then answers it, or lets the connection sleep until there is an answer.
    void proceed();

    void run() override;
    void deliver() override;

private:
    enum class Stage { receiving, page_asked, too_large, submitted };
    /// Of the call; `waited_for` when the connection sleeps, `abandoned` when it has ended meanwhile.
    enum class Progress { running, waited_for, abandoned, done };

    void submit();
    void await_answer();
    void answer_page();
    void answer_events();
    void report_health();
    void refuse(const Refusal& refusal);
    void refuse_busy(const char* cause);
    void respond_with_answer();
    void respond(unsigned int status, std::string body, const char* allowed_methods = nullptr,
                 const char* content_type = "application/json");

    MHD_Connection& m_connection;
    ConnectionRegistry::Connection& m_registered;
    const RequestGate& m_gate;
    const HttpServices& m_services;
    IoThreads& m_threads;
    std::string m_body;
    Stage m_stage = Stage::receiving;
    Route m_route = Route::json_rpc;
    bool m_head_only = false;
    const ConsoleFile* m_console_file = nullptr;
    std::string m_peer; ///< where that is needed
    std::atomic<Progress> m_progress{Progress::done};
    std::optional<std::string> m_answer; ///< the call's until it is done
    std::string m_response;              ///< must stay as it is while it is sent
};

} // namespace zorbd

#endif
