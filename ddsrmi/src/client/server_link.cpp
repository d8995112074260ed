// SPDX-License-Identifier: Apache-2.0
#include "client/server_link.h"

#include <algorithm>

#include "client/destroy_together.h"
#include "dds/greeting.h"
#include "dds/lease.h"
#include "dds/loan.h"
#include "dds/path_name.h"
#include "dds/qos.h"
#include "dds/topics.h"

namespace org::opensplice::DDS_RMI {

namespace {

// A reader learns the state of a new writer some 10 ms after it has matched it; what is written before may be
// lost and come only 200 ms later.
constexpr std::chrono::milliseconds greeting_delay{20};

// A server is felt for so often within the silence that it may keep...
constexpr int pulses_in_a_silence = 4;
// ... and so often when it has been silent for longer.
constexpr std::chrono::milliseconds silent_pulse{200};
// Longer than Cyclone takes to ask again for an acknowledgement, even on a slow machine.
constexpr std::chrono::milliseconds soon{200};

std::uint64_t next_number()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace

ServerLink::ServerLink(const Entity& participant, const InterfaceInfo& interface_info,
                       const Announcement& server, std::chrono::nanoseconds blocking_time)
    : m_number(next_number()), m_server(server), m_path(make_path_name(participant)),
      m_publisher(dds_create_publisher(participant.get(), partition_qos(server.path).get(), nullptr),
                  "cannot create the publisher of requests"),
      m_subscriber(dds_create_subscriber(participant.get(), partition_qos(m_path).get(), nullptr),
                   "cannot create the subscriber of replies"),
      m_longest_silence(configured_lease(participant))
{
    m_exchanges.reserve(interface_info.operation_count);
    for (std::size_t i = 0; i < interface_info.operation_count; ++i)
        m_exchanges.push_back(make_exchange(participant, interface_info.operations[i], blocking_time));
}

// Cyclone lets a writer wait for its acknowledgements.
ServerLink::~ServerLink()
{
    m_attachments.clear();
    std::vector<Entity> waiting;
    for (Exchange& exchange : m_exchanges)
        if (!is_acknowledged(exchange))
            waiting.push_back(std::move(exchange.request_writer));
    destroy_together(std::move(waiting));
}

ServerLink::Exchange ServerLink::make_exchange(const Entity& participant, const OperationInfo& operation,
                                               std::chrono::nanoseconds blocking_time) const
{
    Qos writer_qos = exchange_qos(blocking_time);
    set_path_name(writer_qos, m_path);

    Exchange exchange;
    exchange.operation = &operation;
    exchange.request_topic = create_topic(participant, *operation.request_type, operation.request_topic);
    exchange.reply_topic = create_topic(participant, *operation.reply_type, operation.reply_topic);
    exchange.reply_reader = Entity(dds_create_reader(m_subscriber.get(), exchange.reply_topic.get(),
                                                     exchange_qos(blocking_time).get(), nullptr),
                                   std::string("cannot create a reader of ") + operation.reply_topic);
    exchange.request_writer =
        Entity(dds_create_writer(m_publisher.get(), exchange.request_topic.get(), writer_qos.get(), nullptr),
               std::string("cannot create a writer of ") + operation.request_topic);
    return exchange;
}

void ServerLink::attach(EventLoop& loop, const OnReply& on_reply, const std::function<void()>& on_change)
{
    m_on_reply = on_reply;
    m_on_change = on_change;
    for (std::size_t i = 0; i < m_exchanges.size(); ++i) {
        Exchange& exchange = m_exchanges[i];
        const dds_entity_t reader = exchange.reply_reader.get();
        const dds_entity_t writer = exchange.request_writer.get();
        check(dds_set_status_mask(reader, DDS_DATA_AVAILABLE_STATUS | DDS_SUBSCRIPTION_MATCHED_STATUS),
              "cannot watch a reply reader");
        check(dds_set_status_mask(writer, DDS_PUBLICATION_MATCHED_STATUS), "cannot watch a request writer");
        m_attachments.push_back(loop.attach(reader, [this, i] { on_reader_event(i); }));
        m_attachments.push_back(loop.attach(writer, [this, &exchange] { check_writer(exchange); }));
    }
}

dds_return_t ServerLink::write(std::size_t operation, const void* request) const
{
    return dds_write(m_exchanges[operation].request_writer.get(), request);
}

bool ServerLink::is_acknowledged(const Exchange& exchange)
{
    return dds_wait_for_acks(exchange.request_writer.get(), 0) != DDS_RETCODE_TIMEOUT;
}

bool ServerLink::settled() const
{
    return std::all_of(m_exchanges.begin(), m_exchanges.end(), is_acknowledged);
}

void ServerLink::tend(Clock::time_point now)
{
    send_due_greetings(now);
    feel_due_pulse(now);
}

void ServerLink::on_reader_event(std::size_t operation)
{
    Exchange& exchange = m_exchanges[operation];
    const dds_entity_t reader = exchange.reply_reader.get();
    std::uint32_t changes = 0;
    dds_get_status_changes(reader, &changes);
    if ((changes & DDS_SUBSCRIPTION_MATCHED_STATUS) != 0)
        check_reader(exchange);
    m_last_sign = Clock::now();
    take_all(reader, [&](const void* sample, const dds_sample_info_t& info) {
        if (info.valid_data)
            m_on_reply(operation, sample);
        else if (is_greeting(info))
            on_greeting(exchange);
    });
}

void ServerLink::check_writer(Exchange& exchange)
{
    dds_publication_matched_status_t status{};
    dds_get_publication_matched_status(exchange.request_writer.get(), &status);
    exchange.writer_matched = status.current_count > 0;
    on_match_change();
}

void ServerLink::check_reader(Exchange& exchange)
{
    dds_subscription_matched_status_t status{};
    dds_get_subscription_matched_status(exchange.reply_reader.get(), &status);
    exchange.reader_matched = status.current_count > 0;
    on_match_change();
}

void ServerLink::on_match_change()
{
    const bool matched = std::all_of(m_exchanges.begin(), m_exchanges.end(), [](const Exchange& exchange) {
        return exchange.writer_matched && exchange.reader_matched;
    });
    if (matched == m_matched)
        return;
    m_matched = matched;
    m_greeting_due = matched ? Clock::now() + greeting_delay : Clock::time_point::max();
    m_pulse_due = matched ? Clock::now() + m_longest_silence / pulses_in_a_silence : Clock::time_point::max();
    m_silent = false;
    for (Exchange& exchange : m_exchanges)
        exchange.greeted = false;
    update_connected();
}

void ServerLink::send_due_greetings(Clock::time_point now)
{
    if (now < m_greeting_due)
        return;
    m_greeting_due = Clock::time_point::max();
    for (const Exchange& exchange : m_exchanges)
        send_greeting(exchange.request_writer.get(), *exchange.operation->request_type, m_path);
}

// Acknowledgements come from Cyclone itself, however long the server's implementation takes. When nothing is
// due one, a greeting is sent to have something.
void ServerLink::feel_due_pulse(Clock::time_point now)
{
    if (now < m_pulse_due)
        return;
    if (settled()) {
        m_last_sign = now;
        if (!m_silent)
            send_greeting(m_exchanges[0].request_writer.get(), *m_exchanges[0].operation->request_type,
                          m_path);
    } else if (!m_silent && now - m_last_sign > m_longest_silence && acknowledges_soon()) {
        m_last_sign = now;
    }
    const bool silent = now - m_last_sign > m_longest_silence;
    m_pulse_due = now + (silent ? silent_pulse : m_longest_silence / pulses_in_a_silence);
    if (silent == m_silent)
        return;
    m_silent = silent;
    update_connected();
}

// Other than settled(), whatever is written meanwhile.
bool ServerLink::acknowledges_soon() const
{
    const auto deadline = Clock::now() + soon;
    return std::all_of(m_exchanges.begin(), m_exchanges.end(), [deadline](const Exchange& exchange) {
        const std::chrono::nanoseconds rest = deadline - Clock::now();
        return dds_wait_for_acks(exchange.request_writer.get(), std::max(rest.count(), std::int64_t{0})) !=
               DDS_RETCODE_TIMEOUT;
    });
}

void ServerLink::on_greeting(Exchange& exchange)
{
    exchange.greeted = true;
    update_connected();
}

void ServerLink::update_connected()
{
    const bool connected = m_matched && !m_silent &&
                           std::all_of(m_exchanges.begin(), m_exchanges.end(),
                                       [](const Exchange& exchange) { return exchange.greeted; });
    if (m_connected.exchange(connected, std::memory_order_acq_rel) != connected)
        m_on_change();
}

} // namespace org::opensplice::DDS_RMI
