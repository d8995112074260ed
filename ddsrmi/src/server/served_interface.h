// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_SERVED_INTERFACE_H
#define DDSRMI_SERVER_SERVED_INTERFACE_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "dds/entity.h"
#include "dds/entity_listener.h"
#include "dds/partitioned.h"
#include "dds/signal.h"
#include "ddsrmi/interface_skeleton.h"
#include "ddsrmi/shared_ptr.h"
#include "discovery/service_watch.h"
#include "report.h"
#include "server/admission.h"
#include "server/implementation.h"
#include "server/reply_path.h"
#include "server/request_sample.h"
#include "server/request_team.h"
#include "server/server_session.h"

namespace org::opensplice::DDS_RMI {

/// A service while it is being served. Each time that a service is served is a new object with a partition of
/// its own.
///
/// Calls are taken in on Cyclone's threads, which only put them into their session's queue; a thread of its
/// own answers everything else: who says hello, who asks for room or whether the server is there. So neither
/// waits for an implementation, which the team runs.
class ServedInterface
{
public:
    ServedInterface(std::shared_ptr<Entity> participant, std::shared_ptr<RequestTeam> team,
                    std::shared_ptr<Admission> admission, const shared_ptr<CInterfaceSkeleton>& skeleton,
                    const std::string& name, DDS::Long instance);
    ~ServedInterface();
    ServedInterface(const ServedInterface&) = delete;
    ServedInterface& operator=(const ServedInterface&) = delete;

    /// Takes no more requests; with `wait`, returns when none is being run any more (but the one that calls
    /// this). Harmless when closed already.
    void close(bool wait);

private:
    using Session = std::shared_ptr<ServerSession>;
    using Sample = std::unique_ptr<RequestSample>;

    struct Client
    {
        std::shared_ptr<ReplyPath> path;
        std::uint64_t meeting = 0; // the last one's number
        Session session;           // null until it has said hello
        bool paused = false;
    };

    // On Cyclone's threads.
    void take_in();
    void take_in(Sample sample);
    void take_in_call(const Session& session, Sample sample, Clock::time_point now);
    Session session_of(const RequestSample& sample);
    void leave_to_control(Sample sample);

    // On the control thread.
    void control();
    Clock::time_point next_task() const;
    void answer(RequestSample& sample);
    void answer_hello(RequestSample& sample, Client& client);
    Client* client_of(dds_instance_handle_t writer);
    void begin_session(Client& client, const RequestSample& hello);
    void report_differences(const DDS_RMI_Introduction& introduction);
    bool is_for_me(const DDS_RMI_Request& hello) const;
    void end_session(Client& client);
    void follow_matches();
    void tend_clients(Clock::time_point now);
    bool feed_the_starved();
    void watch_for_successor();

    const std::shared_ptr<Entity> m_participant;
    const std::shared_ptr<RequestTeam> m_team;
    const ServerSession::Service m_service;
    const InterfaceInfo& m_interface;
    const Announcement m_announcement;
    const std::string m_path;
    const std::chrono::nanoseconds m_lease;
    CountedReport m_misdirected;
    CountedReport m_broken;
    CountedReport m_begun_anew;
    CountedReport m_out_of_session;
    const std::shared_ptr<Signal> m_signal;
    std::atomic<bool> m_closed{false};
    std::atomic<bool> m_matches_changed{false};

    std::mutex m_intake_mutex;           // keeps what is taken in its order; taken before m_mutex
    RequestSample::Batch m_next_samples; // guarded by m_intake_mutex

    std::mutex m_mutex;
    std::unordered_map<std::uint64_t, Session> m_sessions; // by their ids; guarded by m_mutex
    std::vector<Sample> m_for_control;                     // guarded by m_mutex
    std::uint64_t m_bytes_for_control = 0;                 // guarded by m_mutex
    std::vector<Session> m_to_tell;                        // of new room; guarded by m_mutex

    // Only the control thread uses these.
    std::unordered_map<dds_instance_handle_t, Client> m_clients; // by their request writers
    std::set<std::string> m_reported_differences;
    std::set<Session> m_starved; // want more room than there is
    Clock::time_point m_last_tended = Clock::now();
    Clock::duration m_retry_pause{};
    ServiceWatch m_watch; // for newer servers of the same service and instance
    bool m_has_successor = false;

    const EntityListener m_listener;
    Partitioned m_reader; // closed while nothing else uses it
    std::thread m_control;
};

} // namespace org::opensplice::DDS_RMI

#endif
