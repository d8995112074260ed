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

#include "client/outstanding_requests.h"
#include "client/server_link.h"
#include "client/service_watch.h"
#include "dds/entity.h"
#include "dds/event_loop.h"
#include "ddsrmi/interface_info.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

/// Who a proxy is and whom it talks to, as its requests carry it.
struct ChannelNames
{
    std::string service;
    std::string proxy;
    DDS::Long proxy_instance;
};

/// What stands behind one proxy: the link to its server, the requests that are outstanding, and the thread
/// that delivers replies, gives up what is overdue, and finds the server again when it has come back.
///
/// Locks: m_mutex is held for moments only and never together with another lock or while foreign code runs.
class RequestChannel : public std::enable_shared_from_this<RequestChannel>
{
public:
    RequestChannel(std::shared_ptr<Entity> participant, const InterfaceInfo& interface_info,
                   ChannelNames names, ServiceWatch watch, unsigned timeout_ms);
    ~RequestChannel();

    /// Starts the thread. Call once, on an object that is held by a std::shared_ptr.
    void open();

    /// Waits until a server is connected; false when none is at the deadline or the channel has been closed.
    bool wait_until_connected(Clock::time_point deadline);

    /// Sends a request; see CInterfaceProxy::send_request.
    void send(std::size_t operation, void* request, const Handler& handler);
    void send_and_wait(std::size_t operation, void* request, const Handler& handler);

    /// Gives up what is outstanding and ends the thread. When it returns no handler is being called, or will
    /// be (but the one on whose thread this is called). Harmless when closed already.
    void close();

    void set_timeout(unsigned milliseconds) { m_timeout_ms = milliseconds; }
    unsigned timeout() const { return m_timeout_ms; }

private:
    using Link = std::shared_ptr<ServerLink>;

    void run();
    std::chrono::nanoseconds time_to_next_task();
    void give_up_the_overdue();
    void report_given_up();

    void deliver(const ServerLink& link, std::size_t operation, const void* sample);

    void tend_servers();
    void let_go_of_links();
    void tend_links();
    const Announcement* better_server(bool next_please) const;
    std::string connected_path() const;
    void connect(const Announcement& server);
    void promote(const Link& link);
    void drop_idle_links();
    bool is_idle(const Link& link) const;

    Link usable_link();
    void fill_header(void* request, DDS::ULong id, const ServerLink& link) const;
    bool on_own_thread() const;
    void require_open() const;

    const std::shared_ptr<Entity> m_participant;
    const InterfaceInfo& m_interface;
    const ChannelNames m_names;
    std::atomic<unsigned> m_timeout_ms;
    OutstandingRequests m_outstanding;
    CountedReport m_strays;
    EventLoop m_loop;
    std::atomic<bool> m_closed{false};

    // Only the channel's thread uses these.
    ServiceWatch m_watch;
    EventLoop::Attachment m_watch_attachment;
    std::vector<Link> m_links;
    Link m_candidate;           // being connected
    std::size_t m_given_up = 0; // and not reported yet
    Clock::time_point m_next_report{};
    Clock::time_point m_out_of_patience{}; // with the candidate
    std::chrono::milliseconds m_patience;
    bool m_links_need_care = true;
    std::vector<std::future<void>> m_partings; // links that are being destroyed

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    // Where requests go, connected or not. Written under m_mutex by the channel's thread alone, which
    // therefore reads it without.
    Link m_current;
    std::thread m_thread;        // guarded by m_mutex
    std::thread::id m_thread_id; // guarded by m_mutex
};

/// What the registry hands to a generated proxy's constructor.
struct ProxySeed
{
    std::shared_ptr<RequestChannel> channel;
};

} // namespace org::opensplice::DDS_RMI

#endif
