// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_REQUEST_CHANNEL_H
#define DDSRMI_CLIENT_REQUEST_CHANNEL_H

#include <atomic>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "client/client_session.h"
#include "client/lost_calls_report.h"
#include "client/server_link.h"
#include "dds/entity.h"
#include "dds/entity_listener.h"
#include "dds/partitioned.h"
#include "dds/signal.h"
#include "ddsrmi/call_failure.h"
#include "ddsrmi/encoding.h"
#include "ddsrmi/interface_info.h"
#include "discovery/service_watch.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

/// What stands behind one proxy: its reply reader, the links to its servers, and the thread that delivers
/// replies, gives up what is overdue, and finds the server again when it has come back.
///
/// Locks: m_mutex is held for moments only and never together with another lock or while foreign code runs.
class RequestChannel : public std::enable_shared_from_this<RequestChannel>
{
public:
    /// `watch` must have been made with this signal.
    RequestChannel(std::shared_ptr<Entity> participant, const InterfaceInfo& interface_info, ProxyNames names,
                   ServiceWatch watch, std::shared_ptr<Signal> signal, unsigned timeout_ms);
    ~RequestChannel();

    /// Starts the thread. Call once, on an object that is held by a std::shared_ptr.
    void open();

    /// Waits until a server is connected; false when none is at the deadline or the channel has been closed.
    bool wait_until_connected(Clock::time_point deadline);
    const std::string& service() const { return m_names.service; }
    /// Whether a server is connected now. Any thread.
    bool is_connected() const;

    /// Sends a request; see CInterfaceProxy::send_request.
    void send(std::size_t operation, const std::vector<DDS::Octet>& arguments, const Handler& handler);
    void send_and_wait(std::size_t operation, const std::vector<DDS::Octet>& arguments,
                       const Handler& handler);

    /// Gives up what is outstanding and ends the thread. When it returns no handler is being called, or will
    /// be (but the one on whose thread this is called). Harmless when closed already.
    void close();

    void set_timeout(unsigned milliseconds) { m_timeout_ms = milliseconds; }
    unsigned timeout() const { return m_timeout_ms; }

private:
    using Link = std::shared_ptr<ServerLink>;
    using Session = std::shared_ptr<ClientSession>;

    /// What senders need of the link that is connected.
    struct Connection
    {
        Session session; // null while there is none
        std::vector<bool> known_operations;
    };

    void run();
    void take_care(Clock::time_point now);
    Clock::time_point next_task();
    void take_replies();
    void take_in(const DDS_RMI_Reply& reply);
    void deliver(ClientSession& session, DDS_RMI_Reply& reply);
    void run_hook(const OutstandingRequest& request, DDS_RMI_Reply& reply);
    void give_up_the_overdue(Clock::time_point now);
    void tell_of_exception(const OutstandingRequest& request, const RaisedException& raised);
    void fail(const OutstandingRequest& request, CallFailure reason, const std::string& text);
    bool tell(const OutstandingRequest& request, CallFailure reason, const char* text);
    void fail_all(const std::vector<OutstandingRequest>& requests, CallFailure reason,
                  const std::string& text);

    void tend_links(Clock::time_point now);
    void choose_server(Clock::time_point now);
    bool may_promote_candidate(Clock::time_point now) const;
    const Server* better_server(bool next_please) const;
    std::string connected_path() const;
    void connect(const Server& server, Clock::time_point now);
    void promote(const Link& link, Clock::time_point now);
    void let_go_of_links(Clock::time_point now);
    bool is_done_with(const ServerLink& link, Clock::time_point now) const;
    void publish_connection();

    Session usable_session(std::size_t operation) const;
    std::string name_of(std::size_t operation) const;
    bool on_own_thread() const;
    void require_open() const;

    const std::shared_ptr<Entity> m_participant;
    const InterfaceInfo& m_interface;
    const ProxyNames m_names;
    const std::string m_path; // the partition in which replies come
    const std::shared_ptr<Signal> m_signal;
    std::atomic<unsigned> m_timeout_ms;
    std::atomic<bool> m_closed{false};
    CountedReport m_strays;
    CountedReport m_undecodable;

    // Only the channel's thread uses these, but for what close() does after its end.
    LostCallsReport m_lost_calls;
    ServiceWatch m_watch;
    std::vector<Link> m_links;
    bool m_needs_care = true;                                       // more has come than results
    Link m_current;                                                 // where requests go, connected or not
    Link m_candidate;                                               // being connected
    Clock::time_point m_out_of_patience = Clock::time_point::max(); // with the candidate
    std::chrono::milliseconds m_patience;
    std::uint64_t m_latest_tried = 0;  // the highest epoch of the servers tried since one was connected
    Clock::time_point m_replaced_at{}; // when m_current last became another link
    std::vector<std::future<void>> m_partings; // links that are being destroyed

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    Connection m_connection;     // guarded by m_mutex
    std::thread m_thread;        // guarded by m_mutex
    std::thread::id m_thread_id; // guarded by m_mutex

    std::atomic<bool> m_reply_writers_changed{false};
    EntityListener m_listener;
    Partitioned m_reader; // last, so that nothing is heard once it goes
};

/// What the registry hands to a generated proxy's constructor.
struct ProxySeed
{
    std::shared_ptr<RequestChannel> channel;
};

} // namespace org::opensplice::DDS_RMI

#endif
