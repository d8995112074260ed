// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_SERVER_SESSION_H
#define DDSRMI_SERVER_SERVER_SESSION_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "clock.h"
#include "server/admission.h"
#include "server/implementation.h"
#include "server/reply_path.h"
#include "server/request_team.h"

namespace org::opensplice::DDS_RMI {

/// The server's side of a session: what one client has sent, which is run in its order and once.
class ServerSession : public RequestQueue
{
public:
    /// What sessions of a service have in common.
    struct Service
    {
        std::shared_ptr<Implementation> implementation;
        std::shared_ptr<Admission> admission;
    };

    ServerSession(const void* owner, Service service, std::shared_ptr<ReplyPath> path,
                  dds_instance_handle_t client);
    ~ServerSession() override;

    std::uint64_t id() const { return m_id; }
    /// The request writer of the client that it is with.
    dds_instance_handle_t client() const { return m_client; }
    ReplyPath& path() const { return *m_path; }

    /// Counts a request that has come. False when it is not the next one, or more than was granted: then the
    /// two sides do not understand each other, and the session is to be ended. `should_tell` as with
    /// Admission.
    bool admit(const DDS_RMI_Request& request, bool& should_tell);
    /// False when there will be more room for the client once others give it back.
    bool want(RoomUsed wanted);
    RoomUsed granted() const;

    /// Tells the client how much is granted, and that the server is there.
    void tell(ReplyKind kind) const;

    void run(QueuedRequest request) override;

    /// When anything last came of the client.
    Clock::time_point last_heard() const { return m_last_heard; }
    void heard(Clock::time_point now) { m_last_heard = now; }

    /// Its requests are not run any more; their room is given back.
    void end();

private:
    void finish(const DDS_RMI_Request& request, Implementation::Outcome outcome);

    const Service m_service;
    const std::shared_ptr<ReplyPath> m_path;
    const dds_instance_handle_t m_client;
    const std::uint64_t m_id;
    std::uint64_t m_last_number = 0; // guarded by the intake's lock
    std::atomic<Clock::time_point> m_last_heard;

    mutable std::mutex m_mutex; // guards all below
    Admission::Accounts m_accounts;
    bool m_ended = false;
};

} // namespace org::opensplice::DDS_RMI

#endif
