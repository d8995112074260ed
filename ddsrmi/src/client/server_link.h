// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_SERVER_LINK_H
#define DDSRMI_CLIENT_SERVER_LINK_H

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "client/service_watch.h"
#include "dds/entity.h"
#include "dds/event_loop.h"
#include "ddsrmi/interface_info.h"

namespace org::opensplice::DDS_RMI {

/// One proxy's endpoints towards one server: for each operation a request writer in the server's partition
/// and a reply reader in a partition of the link's own. Nothing that happens to another server or another
/// proxy shows here.
class ServerLink
{
public:
    using Clock = std::chrono::steady_clock;
    using OnReply = std::function<void(std::size_t operation, const void* sample)>;

    ServerLink(const Entity& participant, const InterfaceInfo& interface_info, const Announcement& server,
               std::chrono::nanoseconds blocking_time);
    ~ServerLink();
    ServerLink(const ServerLink&) = delete;
    ServerLink& operator=(const ServerLink&) = delete;

    /// Begins to follow the endpoints. In the loop's thread, `on_reply` is called for every reply that comes,
    /// `on_change` when connected() may have changed.
    void attach(EventLoop& loop, const OnReply& on_reply, const std::function<void()>& on_change);

    /// When tend() is to be called next. Both are for the loop's thread.
    Clock::time_point care_due() const { return std::min(m_greeting_due, m_pulse_due); }
    /// Sends greetings, and finds out whether the server still acknowledges what it is sent.
    void tend(Clock::time_point now);

    /// Different for every link of the process.
    std::uint64_t number() const { return m_number; }
    const Announcement& server() const { return m_server; }

    /// Whether every operation's request writer and reply reader have their counterparts at the server,
    /// greetings have passed between them, and the server is not silent. Any thread.
    bool connected() const { return m_connected.load(std::memory_order_acquire); }

    /// Whether the server has acknowledged all that was written, or has gone. Only then is the link destroyed
    /// at once; else that takes up to a second, which Cyclone gives writers for their acknowledgements.
    bool settled() const;

    /// A Cyclone return code. Any thread.
    dds_return_t write(std::size_t operation, const void* request) const;

private:
    struct Exchange
    {
        const OperationInfo* operation = nullptr;
        Entity request_topic;
        Entity request_writer;
        bool writer_matched = false;
        Entity reply_topic;
        Entity reply_reader;
        bool reader_matched = false;
        bool greeted = false; ///< by the server, since all is matched
    };

    static bool is_acknowledged(const Exchange& exchange);
    Exchange make_exchange(const Entity& participant, const OperationInfo& operation,
                           std::chrono::nanoseconds blocking_time) const;
    void on_reader_event(std::size_t operation);
    void check_writer(Exchange& exchange);
    void check_reader(Exchange& exchange);
    void on_match_change();
    void send_due_greetings(Clock::time_point now);
    void feel_due_pulse(Clock::time_point now);
    bool acknowledges_soon() const;
    void on_greeting(Exchange& exchange);
    void update_connected();

    const std::uint64_t m_number;
    const Announcement m_server;
    const std::string m_path;
    Entity m_publisher;
    Entity m_subscriber;
    std::vector<Exchange> m_exchanges;                           // their flags belong to the loop's thread
    Clock::time_point m_greeting_due = Clock::time_point::max(); // belongs to the loop's thread
    bool m_matched = false; // belongs to the loop's thread; whether every exchange is
    const std::chrono::nanoseconds m_longest_silence;
    bool m_silent = false;                                    // belongs to the loop's thread
    Clock::time_point m_last_sign = Clock::now();             // of the server; belongs to the loop's thread
    Clock::time_point m_pulse_due = Clock::time_point::max(); // belongs to the loop's thread
    std::atomic<bool> m_connected{false};
    OnReply m_on_reply;
    std::function<void()> m_on_change;
    std::vector<EventLoop::Attachment> m_attachments; // last, so that nothing is followed once it goes
};

} // namespace org::opensplice::DDS_RMI

#endif
