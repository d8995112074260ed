// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_CLIENT_PATH_H
#define DDSRMI_SERVER_CLIENT_PATH_H

#include <chrono>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "dds/entity.h"
#include "dds/event_loop.h"
#include "ddsrmi/interface_info.h"
#include "report.h"
#include "server/outgoing_reply.h"

namespace org::opensplice::DDS_RMI {

/// The way of replies to one client: a reply writer for each operation, in the client's own partition.
///
/// Sending never waits. A reply whose reader has not been matched yet is kept until it is; when the client is
/// slow to take its replies in, what is more than Cyclone's queue holds is kept here and a thread of the
/// path's own sends it as the client catches up.
class ClientPath
{
public:
    /// `loop` tells of readers that come and go; it must outlive the path.
    ClientPath(const Entity& participant, EventLoop& loop, const InterfaceInfo& interface_info,
               const ServiceIdentity& service, const std::string& client);
    ~ClientPath();
    ClientPath(const ClientPath&) = delete;
    ClientPath& operator=(const ClientPath&) = delete;

    /// Answers the client's greeting, as soon as its reply reader is matched. Any thread.
    void greet(std::size_t operation);

    /// Any thread.
    void send(std::size_t operation, OutgoingReply reply);

private:
    struct Waiting
    {
        OutgoingReply reply;
        std::chrono::steady_clock::time_point since;
    };
    struct Lane
    {
        const OperationInfo* operation = nullptr;
        Entity topic;
        Entity writer;
        bool matched = false;
        bool owes_greeting = false;
        std::deque<Waiting> waiting;
    };

    Lane make_lane(const Entity& participant, const OperationInfo& operation) const;
    static bool is_lagging(const Lane& lane) { return lane.owes_greeting || !lane.waiting.empty(); }
    void on_match(Lane& lane);
    void keep(Lane& lane, OutgoingReply reply);
    void keep_unmatched_bounded(Lane& lane);
    bool pay_greeting(Lane& lane) const;
    bool write(Lane& lane, OutgoingReply& reply);
    void flush(Lane& lane);
    void begin_catching_up();
    void catch_up();
    Lane* lagging_lane();

    const ServiceIdentity& m_service;
    Entity m_publisher;
    CountedReport m_dropped;

    std::mutex m_mutex; // guards all below; Cyclone is called under it, which never waits here
    std::vector<Lane> m_lanes;
    bool m_closing = false;
    bool m_catching_up = false;
    std::thread m_catch_up_thread;

    std::vector<EventLoop::Attachment> m_attachments; // last, so that nothing is followed once it goes
};

} // namespace org::opensplice::DDS_RMI

#endif
