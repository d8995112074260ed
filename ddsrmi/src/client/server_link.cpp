// SPDX-License-Identifier: Apache-2.0
#include "client/server_link.h"

#include <algorithm>
#include <random>
#include <utility>

#include "dds/lease.h"
#include "dds/matched.h"
#include "dds/qos.h"
#include "dds/topics.h"
#include "report.h"
#include "wire/definition.h"
#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

namespace {

// The server makes its reply writer when it has heard of the request writer; a hello before that is of no
// use.
constexpr std::chrono::milliseconds patience_with_reply_writer{50};
// A reader of Cyclone's takes nothing in before the writer's first heartbeat, for which it asks 10 ms after
// it has heard of the writer. What is sent earlier may have to be sent again, and that takes 100 ms.
constexpr std::chrono::milliseconds first_heartbeat_time{12};
constexpr std::chrono::milliseconds first_hello_pause{2};
constexpr std::chrono::milliseconds longest_hello_pause{500};

constexpr int pings_in_a_lease = 4;
constexpr std::chrono::milliseconds ping_pause_of_the_silent{500};

char* c_string(const std::string& text)
{
    return const_cast<char*>(text.c_str()); // the sample is only read
}

// Between three and five quarters of it, so that many clients do not speak at the same time for ever.
Clock::duration with_jitter(Clock::duration pause)
{
    static thread_local std::minstd_rand random{std::random_device{}()};
    std::uniform_real_distribution<double> factor(0.75, 1.25);
    return Clock::duration(static_cast<Clock::rep>(static_cast<double>(pause.count()) * factor(random)));
}

std::shared_ptr<const Partitioned> make_writer(const Entity& participant, const InterfaceInfo& interface_info,
                                               const std::string& reply_path, const std::string& server_path,
                                               const EntityListener& listener)
{
    const Entity topic = create_request_topic(participant, interface_info);
    Qos qos = exchange_qos();
    set_user_data(qos, reply_path);
    return std::make_shared<const Partitioned>(
        Partitioned::writer(participant, topic, server_path, qos, listener));
}

// Kinds that a session's server sends, but those that begin and end it.
bool is_known(ReplyKind kind)
{
    return kind >= ReplyKind::result && kind <= ReplyKind::grant;
}

DDS_RMI_Request make_hello(std::uint64_t number, DDS_RMI_Introduction& introduction)
{
    DDS_RMI_Request hello{};
    hello.wire_version = wire_version;
    hello.kind = static_cast<std::uint16_t>(RequestKind::hello);
    hello.number = number;
    hello.about_sender._buffer = &introduction;
    hello.about_sender._length = 1;
    hello.about_sender._maximum = 1;
    return hello;
}

} // namespace

ServerLink::ServerLink(const Entity& participant, const InterfaceInfo& interface_info,
                       const ProxyNames& names, const std::string& reply_path, const Server& server,
                       std::shared_ptr<Signal> signal)
    : m_interface(interface_info), m_names(names), m_server(server),
      m_name("service '" + names.service + "' (instance " + std::to_string(server.announcement.instance) +
             ")"),
      m_lease(configured_lease()), m_listener(std::make_unique<EntityListener>(EntityListener::Actions{
                                       {},
                                       [this, signal = std::move(signal)](dds_instance_handle_t reader) {
                                           if (reader == m_reader)
                                               m_reader_has_changed = true;
                                           m_match_changed = true;
                                           signal->raise();
                                       }})),
      m_writer(make_writer(participant, interface_info, reply_path, server.path, *m_listener)),
      m_known_operations(interface_info.operation_count, true)
{
}

ServerLink::~ServerLink() = default;

Clock::time_point ServerLink::care_due() const
{
    return m_match_changed ? Clock::time_point::min() : std::min(m_next_hello, m_next_ping);
}

void ServerLink::tend(Clock::time_point now)
{
    check_match(now);
    if (now >= m_next_hello) {
        say_hello();
        m_next_hello = now + with_jitter(m_hello_pause);
        m_hello_pause = std::min<Clock::duration>(2 * m_hello_pause, longest_hello_pause);
    }
    check_silence(now);
    m_last_tended = now;
}

// Others may read along in all partitions; their coming and going is none of the session's business.
void ServerLink::check_match(Clock::time_point now)
{
    if (!m_match_changed.exchange(false))
        return;
    const bool has_changed = m_reader_has_changed.exchange(false);
    const dds_instance_handle_t reader = matched_reader();
    if (reader == m_reader && !has_changed)
        return;
    m_reader = reader;
    end_session("it has gone, or its host cannot be reached");
    m_next_hello = Clock::time_point::max();
    if (reader != 0)
        begin_meeting(now + patience_with_reply_writer);
}

void ServerLink::notice_reply_writers(Clock::time_point now)
{
    if (m_next_hello != Clock::time_point::max())
        m_next_hello = std::min(m_next_hello, now + first_heartbeat_time);
}

dds_instance_handle_t ServerLink::matched_reader() const
{
    for (const dds_instance_handle_t reader : matched_readers(m_writer->get())) {
        const MatchedEndpoint endpoint(dds_get_matched_subscription_data(m_writer->get(), reader));
        if (endpoint != nullptr && path_of(*endpoint) == m_server.path)
            return reader;
    }
    return 0;
}

void ServerLink::begin_meeting(Clock::time_point first_hello)
{
    m_meeting = make_session_id();
    m_hello_pause = first_hello_pause;
    m_next_hello = first_hello;
}

void ServerLink::say_hello()
{
    const OwnDefinition definition(m_interface);
    DDS_RMI_Introduction introduction{};
    auto& service = introduction.parties.service_id;
    service.server_class = const_cast<char*>(m_interface.server_class);
    service.server_impl = c_string(m_names.service);
    service.server_instance = m_server.announcement.instance;
    introduction.parties.client_id.client_impl = c_string(m_names.proxy);
    introduction.parties.client_id.client_instance = m_names.proxy_instance;
    introduction.interface_known = definition.message();
    const DDS_RMI_Request hello = make_hello(m_meeting, introduction);
    dds_write(m_writer->get(), &hello);
}

bool ServerLink::take_in(const DDS_RMI_Reply& reply)
{
    const auto kind = static_cast<ReplyKind>(reply.kind);
    if (kind == ReplyKind::welcome || kind == ReplyKind::second_choice) {
        if (reply.number != m_meeting)
            return false;
        on_welcome(reply);
        return true;
    }
    if (m_session == nullptr || reply.session != m_session->id())
        return false;
    if (kind == ReplyKind::forgotten) {
        end_session("its server has forgotten this client");
        begin_meeting(Clock::now());
        return true;
    }
    if (!is_known(kind))
        return false;
    m_last_heard = Clock::now();
    m_silent = false;
    m_session->grant({reply.granted_requests, reply.granted_bytes});
    return true;
}

void ServerLink::on_welcome(const DDS_RMI_Reply& reply)
{
    m_last_heard = Clock::now();
    m_second_choice = static_cast<ReplyKind>(reply.kind) == ReplyKind::second_choice;
    if (m_session != nullptr && m_session->id() == reply.session)
        return; // an answer to another hello of the same meeting
    end_session("its server has begun another session");
    const auto* const introduction =
        reply.about_sender._length == 0 ? nullptr : &reply.about_sender._buffer[0];
    if (introduction != nullptr)
        compare_interfaces(introduction->interface_known);
    m_next_hello = Clock::time_point::max();
    m_next_ping = m_last_heard + with_jitter(m_lease / pings_in_a_lease);
    m_session = std::make_shared<ClientSession>(
        m_writer, reply.session, ClientSession::Grant{reply.granted_requests, reply.granted_bytes},
        introduction == nullptr ? 0 : introduction->most_bytes);
}

void ServerLink::compare_interfaces(const DDS_RMI_Definition& known_there)
{
    auto differences = compare(m_interface, known_there);
    m_known_operations = std::move(differences.in_common);
    if (differences.missing.empty() || std::exchange(m_differences_reported, true))
        return;
    std::string list;
    for (const std::string& signature : differences.missing)
        list += (list.empty() ? "" : ", ") + signature;
    report(m_name + " has another version of the interface " + m_interface.server_class +
           " than this process; calls of these operations fail: " + list);
}

void ServerLink::check_silence(Clock::time_point now)
{
    // What this process has slept through, stopped or busy in a reply hook, is not the server's silence.
    if (now - m_last_tended > m_lease / 2)
        m_last_heard += now - m_last_tended;
    if (m_session == nullptr || now < m_next_ping)
        return;
    m_silent = now - m_last_heard > m_lease;
    m_session->ping();
    m_next_ping = now + with_jitter(m_silent ? Clock::duration(ping_pause_of_the_silent)
                                             : Clock::duration(m_lease / pings_in_a_lease));
}

void ServerLink::end_session(const std::string& why)
{
    if (m_session == nullptr)
        return;
    m_losses.push_back({m_session->end(), m_name + ": " + why});
    m_session = nullptr;
    m_silent = false;
    m_next_ping = Clock::time_point::max();
}

std::vector<ServerLink::Loss> ServerLink::take_losses()
{
    return std::exchange(m_losses, {});
}

} // namespace org::opensplice::DDS_RMI
