// SPDX-License-Identifier: Apache-2.0
#include "server/client_path.h"

#include <algorithm>
#include <utility>

#include "dds/greeting.h"
#include "dds/qos.h"
#include "dds/topics.h"

namespace org::opensplice::DDS_RMI {

namespace {

using Clock = std::chrono::steady_clock;

// For a client whose reply reader does not show up.
constexpr std::chrono::seconds match_patience{10};
constexpr std::size_t most_unmatched = 10'000;
// For a client that does not take its replies in.
constexpr std::size_t most_waiting = 250'000;
// How soon the catching-up thread notices that the path is closing.
constexpr std::chrono::nanoseconds acknowledgement_wait = std::chrono::milliseconds(20);

} // namespace

ClientPath::ClientPath(const Entity& participant, EventLoop& loop, const InterfaceInfo& interface_info,
                       const ServiceIdentity& service, const std::string& client)
    : m_service(service),
      m_publisher(dds_create_publisher(participant.get(), partition_qos(client).get(), nullptr),
                  "cannot create the publisher of replies"),
      m_dropped("dropped a reply of service '" + service.name + "' that its client did not take in")
{
    m_lanes.reserve(interface_info.operation_count);
    for (std::size_t i = 0; i < interface_info.operation_count; ++i)
        m_lanes.push_back(make_lane(participant, interface_info.operations[i]));
    for (Lane& lane : m_lanes)
        m_attachments.push_back(loop.attach(lane.writer.get(), [this, &lane] { on_match(lane); }));
}

ClientPath::~ClientPath()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closing = true;
    }
    if (m_catch_up_thread.joinable())
        m_catch_up_thread.join();
}

ClientPath::Lane ClientPath::make_lane(const Entity& participant, const OperationInfo& operation) const
{
    Lane lane;
    lane.operation = &operation;
    lane.topic = create_topic(participant, *operation.reply_type, operation.reply_topic);
    lane.writer = Entity(dds_create_writer(m_publisher.get(), lane.topic.get(),
                                           exchange_qos(std::chrono::nanoseconds::zero()).get(), nullptr),
                         std::string("cannot create a writer of ") + operation.reply_topic);
    check(dds_set_status_mask(lane.writer.get(), DDS_PUBLICATION_MATCHED_STATUS),
          "cannot watch a reply writer");
    return lane;
}

void ClientPath::greet(std::size_t operation)
{
    const std::lock_guard lock(m_mutex);
    Lane& lane = m_lanes[operation];
    lane.owes_greeting = true;
    if (lane.matched)
        flush(lane);
}

void ClientPath::send(std::size_t operation, OutgoingReply reply)
{
    const std::lock_guard lock(m_mutex);
    Lane& lane = m_lanes[operation];
    if (!lane.matched || is_lagging(lane) || !write(lane, reply))
        keep(lane, std::move(reply));
}

void ClientPath::on_match(Lane& lane)
{
    const std::lock_guard lock(m_mutex);
    dds_publication_matched_status_t status{};
    dds_get_publication_matched_status(lane.writer.get(), &status);
    lane.matched = status.current_count > 0;
    if (lane.matched)
        flush(lane);
}

void ClientPath::keep(Lane& lane, OutgoingReply reply)
{
    if (lane.waiting.size() >= most_waiting) {
        m_dropped.count();
        return;
    }
    lane.waiting.push_back({std::move(reply), Clock::now()});
    if (lane.matched)
        begin_catching_up();
    else
        keep_unmatched_bounded(lane);
}

void ClientPath::keep_unmatched_bounded(Lane& lane)
{
    const auto too_old = Clock::now() - match_patience;
    while (lane.waiting.size() > most_unmatched || lane.waiting.front().since < too_old) {
        lane.waiting.pop_front();
        m_dropped.count();
    }
}

// False when Cyclone's queue is full.
bool ClientPath::write(Lane& lane, OutgoingReply& reply)
{
    const dds_return_t result = dds_write(lane.writer.get(), reply.sample(m_service));
    if (result == DDS_RETCODE_TIMEOUT)
        return false;
    if (result != DDS_RETCODE_OK)
        report("cannot send a reply of service '" + m_service.name + "': " + dds_strretcode(-result));
    return true;
}

// False when Cyclone's queue is full.
bool ClientPath::pay_greeting(Lane& lane) const
{
    if (lane.owes_greeting)
        lane.owes_greeting =
            send_greeting(lane.writer.get(), *lane.operation->reply_type, {}) == DDS_RETCODE_TIMEOUT;
    return !lane.owes_greeting;
}

void ClientPath::flush(Lane& lane)
{
    while (pay_greeting(lane) && !lane.waiting.empty() && write(lane, lane.waiting.front().reply))
        lane.waiting.pop_front();
    if (is_lagging(lane))
        begin_catching_up();
}

void ClientPath::begin_catching_up()
{
    if (m_catching_up || m_closing)
        return;
    if (m_catch_up_thread.joinable())
        m_catch_up_thread.join(); // it has ended: it clears m_catching_up as the last thing under the lock
    m_catching_up = true;
    m_catch_up_thread = std::thread([this] { catch_up(); });
}

void ClientPath::catch_up()
{
    std::unique_lock lock(m_mutex);
    while (Lane* const lane = m_closing ? nullptr : lagging_lane()) {
        const dds_entity_t writer = lane->writer.get();
        lock.unlock();
        dds_wait_for_acks(writer, acknowledgement_wait.count());
        lock.lock();
        flush(*lane);
    }
    m_catching_up = false;
}

ClientPath::Lane* ClientPath::lagging_lane()
{
    const auto found = std::find_if(m_lanes.begin(), m_lanes.end(),
                                    [](const Lane& lane) { return lane.matched && is_lagging(lane); });
    return found == m_lanes.end() ? nullptr : &*found;
}

} // namespace org::opensplice::DDS_RMI
