// SPDX-License-Identifier: Apache-2.0
#include "client/client_session.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::chrono::microseconds first_retry_pause{100};
constexpr std::chrono::milliseconds longest_retry_pause{5};

DDS_RMI_Request message(RequestKind kind, std::uint64_t session)
{
    DDS_RMI_Request request{};
    request.wire_version = wire_version;
    request.kind = static_cast<std::uint16_t>(kind);
    request.session = session;
    return request;
}

std::uint32_t milliseconds_on_the_wire(std::chrono::milliseconds time)
{
    return static_cast<std::uint32_t>(
        std::min<std::chrono::milliseconds::rep>(time.count(), std::numeric_limits<std::uint32_t>::max()));
}

} // namespace

ClientSession::ClientSession(std::shared_ptr<const Partitioned> request_writer, std::uint64_t id, Grant grant,
                             std::uint64_t most_bytes)
    : m_writer(std::move(request_writer)), m_id(id), m_most_bytes(most_bytes), m_granted(grant)
{
}

ClientSession::Sent ClientSession::send(const Call& call, Clock::time_point patience)
{
    const std::uint64_t cost = cost_of(call.arguments.size());
    if (cost > m_most_bytes)
        return Sent::too_large;
    Lock lock(m_mutex);
    if (!wait_for_room(lock, cost, patience))
        return m_ended ? Sent::ended : Sent::no_room;

    const std::uint64_t number = ++m_sent.requests;
    m_sent.bytes += cost;
    const auto deadline = Clock::now() + call.timeout;
    m_outstanding.add(number, {call.handler, call.operation, deadline});
    const Sent sent = deadline < m_planned_wake_up ? Sent::yes_and_due_early : Sent::yes;
    m_planned_wake_up = std::min(m_planned_wake_up, deadline);
    m_turn_taken = true;

    const dds_return_t result = write_in_turn(lock, number, call, patience);
    give_turn_back();
    if (result == DDS_RETCODE_OK || !m_outstanding.take(number))
        return sent; // what is not outstanding any more has ended, and its handler has been told
    --m_sent.requests;
    m_sent.bytes -= cost;
    if (result == DDS_RETCODE_TIMEOUT)
        return Sent::no_room;
    lock.unlock();
    check(result, "cannot send a request");
    return sent;
}

bool ClientSession::has_room(std::uint64_t cost) const
{
    return m_sent.requests < m_granted.requests && m_sent.bytes + cost <= m_granted.bytes;
}

bool ClientSession::wait_for_room(Lock& lock, std::uint64_t cost, Clock::time_point patience)
{
    ++m_waiting;
    const auto may_send = [&] { return m_ended || (!m_turn_taken && has_room(cost)); };
    while (!may_send() && Clock::now() < patience) {
        const bool asked = m_turn_taken || ask_for_room(lock, cost);
        if (may_send())
            break;
        // Without a condition: what another sender has sent meanwhile is to be asked for, too.
        m_changed.wait_until(lock, asked ? patience : Clock::now() + longest_retry_pause);
    }
    --m_waiting;
    return may_send() && !m_ended;
}

// The server grants by itself as it takes requests in; it is asked when that was not enough. False when
// Cyclone's own queue had no room for the question.
bool ClientSession::ask_for_room(Lock& lock, std::uint64_t cost)
{
    const Grant needed{m_sent.requests + 1, m_sent.bytes + cost};
    if (needed.requests <= m_asked.requests && needed.bytes <= m_asked.bytes)
        return true;
    const Grant asked{std::max(needed.requests, m_asked.requests), std::max(needed.bytes, m_asked.bytes)};
    DDS_RMI_Request want = message(RequestKind::want, m_id);
    want.number = asked.requests;
    want.operation = asked.bytes;
    lock.unlock();
    const dds_return_t result = dds_write(m_writer->get(), &want);
    lock.lock();
    if (result != DDS_RETCODE_OK)
        return false;
    m_asked = {std::max(asked.requests, m_asked.requests), std::max(asked.bytes, m_asked.bytes)};
    return true;
}

// While Cyclone's own queue is full it is tried again: soon, for most of the time there is room again at
// once, then seldom. (Cyclone's own way to wait for that counts on the system clock.)
dds_return_t ClientSession::write_in_turn(Lock& lock, std::uint64_t number, const Call& call,
                                          Clock::time_point patience)
{
    Clock::duration pause = first_retry_pause;
    while (true) {
        lock.unlock();
        const dds_return_t result = write(number, call);
        lock.lock();
        if (result != DDS_RETCODE_TIMEOUT || m_ended || Clock::now() >= patience)
            return result;
        m_changed.wait_until(lock, Clock::now() + pause, [this] { return m_ended; });
        pause = std::min<Clock::duration>(2 * pause, longest_retry_pause);
    }
}

void ClientSession::give_turn_back()
{
    m_turn_taken = false;
    if (m_waiting > 0)
        m_changed.notify_all();
}

dds_return_t ClientSession::write(std::uint64_t number, const Call& call) const
{
    DDS_RMI_Request request = message(RequestKind::call, m_id);
    request.patience_ms = milliseconds_on_the_wire(call.timeout);
    request.number = number;
    request.operation = call.hash;
    request.arguments._buffer = const_cast<DDS::Octet*>(call.arguments.data()); // it is only read
    request.arguments._length = static_cast<std::uint32_t>(call.arguments.size());
    request.arguments._maximum = request.arguments._length;
    return dds_write(m_writer->get(), &request);
}

void ClientSession::ping() const
{
    const DDS_RMI_Request ping = message(RequestKind::ping, m_id);
    dds_write(m_writer->get(), &ping);
}

void ClientSession::grant(Grant grant)
{
    const Lock lock(m_mutex);
    m_granted = {std::max(m_granted.requests, grant.requests), std::max(m_granted.bytes, grant.bytes)};
    if (m_waiting > 0)
        m_changed.notify_all();
}

std::optional<OutstandingRequest> ClientSession::take(std::uint64_t number)
{
    const Lock lock(m_mutex);
    return m_outstanding.take(number);
}

std::vector<OutstandingRequest> ClientSession::take_expired(Clock::time_point now)
{
    const Lock lock(m_mutex);
    return m_outstanding.take_expired(now);
}

std::vector<OutstandingRequest> ClientSession::end()
{
    const Lock lock(m_mutex);
    m_ended = true;
    m_changed.notify_all();
    return m_outstanding.take_all();
}

bool ClientSession::has_outstanding() const
{
    const Lock lock(m_mutex);
    return !m_outstanding.empty();
}

Clock::time_point ClientSession::plan_wake_up(Clock::time_point now)
{
    const Lock lock(m_mutex);
    if (!m_outstanding.empty())
        m_planned_wake_up = m_outstanding.first_deadline();
    else if (m_planned_wake_up <= now)
        m_planned_wake_up = Clock::time_point::max();
    return m_planned_wake_up;
}

} // namespace org::opensplice::DDS_RMI
