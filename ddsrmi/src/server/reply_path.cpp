// SPDX-License-Identifier: Apache-2.0
#include "server/reply_path.h"

#include <utility>

#include "dds/qos.h"
#include "dds/topics.h"
#include "report.h"
#include "wire/definition.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::uint64_t most_waiting_bytes = std::uint64_t{16} << 20U;

DDS_RMI_Reply message(ReplyKind kind, std::uint64_t session, std::uint64_t number, RoomUsed granted)
{
    DDS_RMI_Reply reply{};
    reply.wire_version = wire_version;
    reply.kind = static_cast<std::uint16_t>(kind);
    reply.session = session;
    reply.number = number;
    reply.granted_requests = granted.requests;
    reply.granted_bytes = granted.bytes;
    return reply;
}

} // namespace

ReplyPath::ReplyPath(const Entity& participant, const InterfaceInfo& interface_info,
                     const std::string& client, std::shared_ptr<Signal> signal)
    : m_interface(interface_info), m_signal(std::move(signal)), m_listener({}),
      m_writer(Partitioned::writer(participant, create_reply_topic(participant, interface_info), client,
                                   exchange_qos(), m_listener))
{
}

void ReplyPath::send(OutgoingReply reply)
{
    const std::lock_guard lock(m_mutex);
    if (m_waiting.empty() && write(reply))
        return;
    if (m_waiting_bytes > most_waiting_bytes && !answers_a_call(reply.kind))
        return; // so that a client which asks on and on and takes no answer in costs no more than this
    m_waiting_bytes += cost_of(reply.result.size());
    m_waiting.push_back(std::move(reply));
    if (m_waiting.size() == 1)
        m_signal->raise();
}

// False when Cyclone's queue is full.
bool ReplyPath::write(const OutgoingReply& reply) const
{
    DDS_RMI_Reply sample = message(reply.kind, reply.session, reply.number, reply.granted);
    sample.result._buffer = const_cast<DDS::Octet*>(reply.result.data()); // it is only read
    sample.result._length = static_cast<std::uint32_t>(reply.result.size());
    sample.result._maximum = sample.result._length;
    const dds_return_t result = dds_write(m_writer.get(), &sample);
    if (result == DDS_RETCODE_TIMEOUT)
        return false;
    if (result != DDS_RETCODE_OK)
        report(std::string("cannot send a reply: ") + dds_strretcode(-result));
    return true;
}

void ReplyPath::welcome(ReplyKind kind, std::uint64_t session, std::uint64_t meeting, RoomUsed granted,
                        std::uint64_t most_bytes) const
{
    const OwnDefinition definition(m_interface);
    char nobody[] = "";
    DDS_RMI_Introduction introduction{};
    introduction.parties.service_id.server_class = nobody;
    introduction.parties.service_id.server_impl = nobody;
    introduction.parties.client_id.client_impl = nobody;
    introduction.interface_known = definition.message();
    introduction.most_bytes = most_bytes;
    DDS_RMI_Reply welcome = message(kind, session, meeting, granted);
    welcome.about_sender._buffer = &introduction;
    welcome.about_sender._length = 1;
    welcome.about_sender._maximum = 1;
    dds_write(m_writer.get(), &welcome);
}

bool ReplyPath::flush()
{
    const std::lock_guard lock(m_mutex);
    const std::size_t before = m_waiting.size();
    while (!m_waiting.empty() && write(m_waiting.front())) {
        m_waiting_bytes -= cost_of(m_waiting.front().result.size());
        m_waiting.pop_front();
    }
    return m_waiting.size() < before;
}

bool ReplyPath::is_lagging() const
{
    const std::lock_guard lock(m_mutex);
    return !m_waiting.empty();
}

bool ReplyPath::is_overfull() const
{
    const std::lock_guard lock(m_mutex);
    return m_waiting_bytes > most_waiting_bytes;
}

} // namespace org::opensplice::DDS_RMI
