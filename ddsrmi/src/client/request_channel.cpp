// SPDX-License-Identifier: Apache-2.0
#include "client/request_channel.h"

#include <algorithm>
#include <utility>

#include "client/handler_activation.h"
#include "client/waiting_handler.h"
#include "dds/loan.h"
#include "dds/path_name.h"
#include "dds/qos.h"
#include "dds/topics.h"
#include "ddsrmi/encoding.h"
#include "ddsrmi/exceptions.h"
#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

namespace {

// How long a call waits while the server has granted no room for it.
constexpr std::chrono::seconds blocking_time{1};
// How long one server is tried before the next one, where a service has several: longer from turn to turn,
// for it may be the machine that is slow.
constexpr std::chrono::milliseconds first_patience{500};
constexpr std::chrono::milliseconds longest_patience{4000};
// A server that was replaced is most likely dead; one that is not gets this long to answer what it was sent.
constexpr std::chrono::seconds grace_of_the_replaced{2};

std::string text_of(const DDS_RMI_Reply& reply)
{
    return std::string(reinterpret_cast<const char*>(reply.result._buffer), reply.result._length);
}

} // namespace

RequestChannel::RequestChannel(std::shared_ptr<Entity> participant, const InterfaceInfo& interface_info,
                               ProxyNames names, ServiceWatch watch, std::shared_ptr<Signal> signal,
                               unsigned timeout_ms)
    : m_participant(std::move(participant)), m_interface(interface_info), m_names(std::move(names)),
      m_path(make_path_name(*m_participant)), m_signal(std::move(signal)), m_timeout_ms(timeout_ms),
      m_strays("dropped a reply of service '" + m_names.service + "' to a request that is not outstanding"),
      m_undecodable("dropped a reply of service '" + m_names.service + "' that cannot be decoded"),
      m_lost_calls(m_names.service), m_watch(std::move(watch)), m_patience(first_patience),
      m_listener({[this] { m_signal->raise(Signal::messages); },
                  [this](dds_instance_handle_t) {
                      m_reply_writers_changed = true;
                      m_signal->raise();
                  }}),
      m_reader(Partitioned::reader(*m_participant, create_reply_topic(*m_participant, interface_info), m_path,
                                   exchange_qos(), m_listener))
{
}

RequestChannel::~RequestChannel() = default;

void RequestChannel::open()
{
    const std::lock_guard lock(m_mutex);
    m_thread = std::thread([self = shared_from_this()] { self->run(); });
    m_thread_id = m_thread.get_id();
}

bool RequestChannel::wait_until_connected(Clock::time_point deadline)
{
    std::unique_lock lock(m_mutex);
    const auto settled = [this] { return m_closed || m_connection.session != nullptr; };
    if (deadline == Clock::time_point::max())
        m_changed.wait(lock, settled);
    else
        m_changed.wait_until(lock, deadline, settled);
    return m_connection.session != nullptr && !m_closed;
}

bool RequestChannel::is_connected() const
{
    const std::lock_guard lock(m_mutex);
    return m_connection.session != nullptr && !m_closed;
}

void RequestChannel::close()
{
    m_closed = true;
    m_signal->raise();
    std::thread thread;
    const bool own_thread = on_own_thread();
    {
        const std::lock_guard lock(m_mutex);
        thread.swap(m_thread);
    }
    m_changed.notify_all();

    if (own_thread) {
        if (thread.joinable())
            thread.detach();
    } else if (thread.joinable()) {
        thread.join();
    } else {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_thread_id == std::thread::id(); });
    }
    // The thread has ended, or is this one: what it has left is this call's.
    for (const Link& link : m_links)
        if (link->session() != nullptr)
            fail_all(link->session()->end(), CallFailure::closed,
                     "the proxy was released or the RMI runtime stopped");
}

void RequestChannel::send(std::size_t operation, const std::vector<DDS::Octet>& arguments,
                          const Handler& handler)
{
    const Session session = usable_session(operation);
    if (handler.get() == nullptr)
        throw BAD_PARAM("a request needs a reply handler");

    activate(*handler.get());
    using Sent = ClientSession::Sent;
    Sent sent = Sent::ended;
    try {
        sent = session->send({operation, m_interface.operations[operation].hash, arguments, handler,
                              std::chrono::milliseconds(m_timeout_ms)},
                             Clock::now() + blocking_time);
    } catch (...) {
        deactivate(*handler.get());
        throw;
    }
    if (sent == Sent::yes_and_due_early)
        m_signal->raise();
    if (sent == Sent::yes || sent == Sent::yes_and_due_early)
        return;
    deactivate(*handler.get());
    require_open();
    if (sent == Sent::too_large)
        throw BAD_PARAM(("the arguments of '" + name_of(operation) + "' are larger than service '" +
                         m_names.service + "' lets a client send")
                            .c_str());
    if (sent == Sent::no_room)
        throw TIMEOUT("service '" + m_names.service + "' takes no more requests: its queues are full");
    throw SERVICE_NOT_FOUND("service '" + m_names.service + "' was lost while a call waited for room");
}

void RequestChannel::send_and_wait(std::size_t operation, const std::vector<DDS::Octet>& arguments,
                                   const Handler& handler)
{
    if (on_own_thread())
        throw BAD_INV_ORDER("a reply hook cannot wait for another reply of its own proxy");
    const auto outcome = std::make_shared<CallOutcome>();
    send(operation, arguments, Handler(new WaitingHandler(handler, outcome)));
    outcome->wait();
}

void RequestChannel::run()
{
    try {
        auto next = Clock::time_point::min();
        while (!m_closed) {
            const unsigned reasons = m_signal->wait_until(next);
            if ((reasons & Signal::messages) != 0)
                take_replies();
            const auto now = Clock::now();
            if (reasons == Signal::messages && !m_needs_care && now < next)
                continue; // nothing but results have come, as most of the time
            take_care(now);
            next = next_task();
        }
    } catch (...) {
        report_current_exception("the connection to service '" + m_names.service + "' is lost:");
        m_closed = true;
    }
    m_lost_calls.write_all();
    const std::lock_guard lock(m_mutex);
    m_connection = {};
    m_thread_id = std::thread::id();
    m_changed.notify_all();
}

void RequestChannel::take_care(Clock::time_point now)
{
    m_needs_care = false;
    m_watch.refresh();
    give_up_the_overdue(now);
    tend_links(now);
    choose_server(now);
    let_go_of_links(now);
    publish_connection();
    m_lost_calls.write_when_due(now);
}

Clock::time_point RequestChannel::next_task()
{
    const auto now = Clock::now();
    auto next = std::min(m_lost_calls.due(), m_out_of_patience);
    for (const Link& link : m_links) {
        next = std::min(next, link->care_due());
        if (link->session() != nullptr)
            next = std::min(next, link->session()->plan_wake_up(now));
        if (link != m_current && link != m_candidate)
            next = std::min(next, m_replaced_at + grace_of_the_replaced);
    }
    return next;
}

void RequestChannel::take_replies()
{
    take_all(m_reader.get(), [this](const void* sample, const dds_sample_info_t& info) {
        if (info.valid_data && !m_closed)
            take_in(*static_cast<const DDS_RMI_Reply*>(sample));
    });
}

void RequestChannel::take_in(const DDS_RMI_Reply& reply)
{
    const auto concerned = [&](const Link& link) {
        return reply.wire_version == wire_version && link->take_in(reply);
    };
    const auto found = std::find_if(m_links.begin(), m_links.end(), concerned);
    if (found == m_links.end())
        m_strays.count();
    else if (answers_a_call(static_cast<ReplyKind>(reply.kind)))
        deliver(*(*found)->session(), const_cast<DDS_RMI_Reply&>(reply)); // its texts are handed out as char*
    else
        m_needs_care = true;
}

void RequestChannel::deliver(ClientSession& session, DDS_RMI_Reply& reply)
{
    const auto request = session.take(reply.number);
    if (!request) {
        m_strays.count();
        return;
    }
    switch (static_cast<ReplyKind>(reply.kind)) {
    case ReplyKind::result:
        run_hook(*request, reply);
        break;
    case ReplyKind::unknown_operation:
        fail(*request, CallFailure::unknown_operation,
             "service '" + m_names.service + "' does not know the operation '" + name_of(request->operation) +
                 "'");
        break;
    case ReplyKind::overdue:
        fail(*request, CallFailure::given_up, "service '" + m_names.service + "' came to the call too late");
        break;
    default:
        fail(*request, CallFailure::implementation_failed,
             "the implementation of '" + name_of(request->operation) + "' failed: " + text_of(reply));
        break;
    }
}

void RequestChannel::run_hook(const OutstandingRequest& request, DDS_RMI_Reply& reply)
{
    deactivate(*request.handler.get());
    const EncodedResult result{reply.result._buffer, reply.result._length};
    DDS::ReadCondition condition(&result);
    try {
        request.handler->handleReply(&condition);
    } catch (const DecodingError&) {
        m_undecodable.count();
        fail(request, CallFailure::implementation_failed,
             "the reply of '" + name_of(request.operation) + "' cannot be decoded");
    } catch (const RaisedException& raised) {
        tell_of_exception(request, raised);
    } catch (...) {
        report_current_exception("the reply hook of " + name_of(request.operation));
    }
}

// An exception is an answer: who handles it has not lost the call.
void RequestChannel::tell_of_exception(const OutstandingRequest& request, const RaisedException& raised)
{
    try {
        raised.rethrow();
    } catch (const std::exception& exception) { // or there was no memory to keep it
        if (!tell(request, CallFailure::exception_raised, exception.what()))
            m_lost_calls.count(CallFailure::exception_raised);
    }
}

void RequestChannel::give_up_the_overdue(Clock::time_point now)
{
    for (const Link& link : m_links)
        if (link->session() != nullptr)
            fail_all(link->session()->take_expired(now), CallFailure::given_up,
                     "service '" + m_names.service + "' did not reply in time");
}

void RequestChannel::fail(const OutstandingRequest& request, CallFailure reason, const std::string& text)
{
    m_needs_care = true;
    if (reason != CallFailure::closed)
        m_lost_calls.count(reason);
    deactivate(*request.handler.get());
    tell(request, reason, text.c_str());
}

// Whether there is somebody to tell.
bool RequestChannel::tell(const OutstandingRequest& request, CallFailure reason, const char* text)
{
    auto* const wants_to_know = dynamic_cast<CallFailureHandler*>(request.handler.get());
    if (wants_to_know == nullptr)
        return false;
    try {
        wants_to_know->handleFailure(reason, text);
    } catch (...) {
        report_current_exception("the failure hook of " + name_of(request.operation));
    }
    return true;
}

void RequestChannel::fail_all(const std::vector<OutstandingRequest>& requests, CallFailure reason,
                              const std::string& text)
{
    for (const OutstandingRequest& request : requests)
        fail(request, reason, text);
}

void RequestChannel::tend_links(Clock::time_point now)
{
    const bool reply_writers_changed = m_reply_writers_changed.exchange(false);
    for (const Link& link : m_links) {
        if (reply_writers_changed)
            link->notice_reply_writers(now);
        link->tend(now);
        for (const auto& [requests, why] : link->take_losses())
            fail_all(requests, CallFailure::server_lost, why);
    }
}

void RequestChannel::choose_server(Clock::time_point now)
{
    if (m_candidate != nullptr && m_watch.find(m_candidate->server().path) == nullptr)
        m_candidate.reset();
    if (m_candidate != nullptr && may_promote_candidate(now))
        promote(std::exchange(m_candidate, nullptr), now);

    const bool out_of_patience = m_candidate != nullptr && now >= m_out_of_patience;
    if (out_of_patience) {
        m_patience = std::min(2 * m_patience, longest_patience);
        m_out_of_patience = now + m_patience;
    }
    if (const Server* const server = better_server(out_of_patience))
        connect(*server, now);
    if (m_candidate == nullptr || m_watch.live().size() + (m_candidate->is_second_choice() ? 1 : 0) < 2)
        m_out_of_patience = Clock::time_point::max();
}

// A server that knows of a newer one of its own number is taken only when that one does not answer.
bool RequestChannel::may_promote_candidate(Clock::time_point now) const
{
    return m_candidate->connected() && (!m_candidate->is_second_choice() || now >= m_out_of_patience);
}

// A newer server of the same instance is the old one restarted, even if the old one's end has not shown yet.
// Without a connected server any will do: the newest first, then each gets its turn.
const Server* RequestChannel::better_server(bool next_please) const
{
    if (m_candidate != nullptr && next_please)
        return m_watch.next_in_turn(m_candidate->server().path, connected_path());
    if (m_candidate != nullptr) {
        const Server* const successor = m_watch.successor(m_candidate->server());
        return successor != nullptr && successor->announcement.epoch > m_latest_tried ? successor : nullptr;
    }
    if (m_current != nullptr && m_current->connected())
        return m_watch.successor(m_current->server());
    return m_watch.newest_but(m_current == nullptr ? std::string() : m_current->server().path);
}

std::string RequestChannel::connected_path() const
{
    return m_current != nullptr && m_current->connected() ? m_current->server().path : std::string();
}

void RequestChannel::connect(const Server& server, Clock::time_point now)
{
    const auto known = std::find_if(m_links.begin(), m_links.end(),
                                    [&](const Link& link) { return link->server().path == server.path; });
    m_out_of_patience = now + m_patience;
    m_latest_tried = std::max(m_latest_tried, server.announcement.epoch);
    if (known != m_links.end()) {
        m_candidate = *known;
        return;
    }
    m_candidate =
        std::make_shared<ServerLink>(*m_participant, m_interface, m_names, m_path, server, m_signal);
    m_links.push_back(m_candidate);
    m_candidate->tend(now);
}

void RequestChannel::promote(const Link& link, Clock::time_point now)
{
    m_patience = first_patience;
    m_out_of_patience = Clock::time_point::max();
    m_latest_tried = 0;
    m_watch.set_predecessors_aside(link->server());
    m_current = link;
    m_replaced_at = now;
}

// A link's end waits up to a second for a server that owes it acknowledgements, which must not keep replies
// of other servers from being delivered.
void RequestChannel::let_go_of_links(Clock::time_point now)
{
    if (m_current != nullptr && m_watch.find(m_current->server().path) == nullptr &&
        m_current->session() == nullptr)
        m_current.reset();
    for (const Link& link : m_links) {
        if (!is_done_with(*link, now))
            continue;
        link->end_session("a newer server has replaced it");
        for (const auto& [requests, why] : link->take_losses())
            fail_all(requests, CallFailure::server_lost, why);
    }
    const auto first_done = std::stable_partition(
        m_links.begin(), m_links.end(), [&](const Link& link) { return !is_done_with(*link, now); });
    for (auto done = first_done; done != m_links.end(); ++done)
        m_partings.push_back(
            std::async(std::launch::async, [link = std::move(*done)]() mutable { link.reset(); }));
    m_links.erase(first_done, m_links.end());

    const auto has_ended = [](const std::future<void>& parting) {
        return parting.wait_for(std::chrono::seconds::zero()) == std::future_status::ready;
    };
    m_partings.erase(std::remove_if(m_partings.begin(), m_partings.end(), has_ended), m_partings.end());
}

bool RequestChannel::is_done_with(const ServerLink& link, Clock::time_point now) const
{
    if (&link == m_candidate.get() || &link == m_current.get())
        return false;
    const bool waits_for_replies = link.session() != nullptr && link.session()->has_outstanding();
    return !waits_for_replies || now >= m_replaced_at + grace_of_the_replaced;
}

void RequestChannel::publish_connection()
{
    const Session session = m_current != nullptr && m_current->connected() ? m_current->session() : nullptr;
    const std::lock_guard lock(m_mutex);
    if (m_connection.session == session)
        return;
    m_connection.session = session;
    if (session != nullptr)
        m_connection.known_operations = m_current->known_operations();
    m_changed.notify_all();
}

RequestChannel::Session RequestChannel::usable_session(std::size_t operation) const
{
    require_open();
    const std::lock_guard lock(m_mutex);
    if (m_connection.session == nullptr)
        throw SERVICE_NOT_FOUND("service '" + m_names.service + "' is not available: no server offers it");
    if (!m_connection.known_operations.at(operation))
        throw BAD_PARAM(("service '" + m_names.service + "' has no operation '" +
                         m_interface.operations[operation].signature +
                         "': its server has another version of the interface")
                            .c_str());
    return m_connection.session;
}

std::string RequestChannel::name_of(std::size_t operation) const
{
    return m_interface.operations[operation].name;
}

bool RequestChannel::on_own_thread() const
{
    const std::lock_guard lock(m_mutex);
    return m_thread_id == std::this_thread::get_id();
}

void RequestChannel::require_open() const
{
    if (m_closed)
        throw BAD_INV_ORDER("the RMI runtime of this proxy has been stopped");
}

} // namespace org::opensplice::DDS_RMI
