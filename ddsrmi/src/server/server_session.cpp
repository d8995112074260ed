// SPDX-License-Identifier: Apache-2.0
#include "server/server_session.h"

#include <utility>

namespace org::opensplice::DDS_RMI {

ServerSession::ServerSession(const void* owner, Service service, std::shared_ptr<ReplyPath> path,
                             dds_instance_handle_t client)
    : RequestQueue(owner), m_service(std::move(service)), m_path(std::move(path)), m_client(client),
      m_id(make_session_id()), m_last_heard(Clock::now())
{
    m_service.admission->open(m_accounts);
}

ServerSession::~ServerSession()
{
    end();
}

bool ServerSession::admit(const DDS_RMI_Request& request, bool& should_tell)
{
    if (request.number != m_last_number + 1)
        return false;
    ++m_last_number;
    const std::lock_guard lock(m_mutex);
    return m_service.admission->arrived(m_accounts, cost_of(request.arguments._length), should_tell);
}

bool ServerSession::want(RoomUsed wanted)
{
    const std::lock_guard lock(m_mutex);
    return m_ended || m_service.admission->want(m_accounts, wanted);
}

RoomUsed ServerSession::granted() const
{
    const std::lock_guard lock(m_mutex);
    return m_accounts.granted();
}

void ServerSession::tell(ReplyKind kind) const
{
    m_path->send({kind, m_id, 0, granted(), {}});
}

void ServerSession::run(QueuedRequest queued)
{
    DDS_RMI_Request& request = queued.sample->request();
    if (Clock::now() > queued.deadline)
        finish(request, {ReplyKind::overdue, {}});
    else
        finish(request, m_service.implementation->run(request));
}

void ServerSession::finish(const DDS_RMI_Request& request, Implementation::Outcome outcome)
{
    RoomUsed granted{};
    {
        const std::lock_guard lock(m_mutex);
        if (m_ended)
            return;
        m_service.admission->release(m_accounts, cost_of(request.arguments._length));
        granted = m_accounts.granted();
    }
    m_path->send({outcome.kind, m_id, request.number, granted, std::move(outcome.result)});
}

void ServerSession::end()
{
    const std::lock_guard lock(m_mutex);
    if (!std::exchange(m_ended, true))
        m_service.admission->close(m_accounts);
}

} // namespace org::opensplice::DDS_RMI
