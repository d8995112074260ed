// SPDX-License-Identifier: Apache-2.0
#include "client/request_channel.h"

#include <algorithm>
#include <utility>

#include "client/destroy_together.h"
#include "client/handler_activation.h"
#include "client/waiting_handler.h"
#include "dds_rmi.h"
#include "ddsrmi/exceptions.h"

namespace org::opensplice::DDS_RMI {

namespace {

// How long a call waits while the server's queues are full.
constexpr std::chrono::seconds blocking_time{1};
constexpr std::size_t most_outstanding = 200'000;
// How long one server is tried before the next one, where a service has several: longer from turn to turn,
// for it may be the machine that is slow.
constexpr std::chrono::milliseconds first_patience{500};
constexpr std::chrono::milliseconds longest_patience{4000};
constexpr std::chrono::seconds report_pause{1};

char* c_string(const std::string& text)
{
    return const_cast<char*>(text.c_str()); // the sample is only read
}

void release(const std::vector<Handler>& handlers)
{
    for (const Handler& handler : handlers)
        deactivate(*handler.get());
}

} // namespace

RequestChannel::RequestChannel(std::shared_ptr<Entity> participant, const InterfaceInfo& interface_info,
                               ChannelNames names, ServiceWatch watch, unsigned timeout_ms)
    : m_participant(std::move(participant)), m_interface(interface_info), m_names(std::move(names)),
      m_timeout_ms(timeout_ms), m_outstanding(most_outstanding),
      m_strays("dropped a reply of service '" + m_names.service + "' to a request that is not outstanding"),
      m_loop(*m_participant), m_watch(std::move(watch)), m_patience(first_patience)
{
    m_watch_attachment = m_loop.attach(m_watch.entity(), [this] {
        m_watch.refresh();
        m_links_need_care = true;
    });
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
    const auto settled = [this] { return m_closed || (m_current != nullptr && m_current->connected()); };
    return m_changed.wait_until(lock, deadline, settled) && !m_closed;
}

void RequestChannel::close()
{
    m_closed = true;
    m_loop.wake();
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
    release(m_outstanding.take_all());
}

void RequestChannel::send(std::size_t operation, void* request, const Handler& handler)
{
    const Link link = usable_link();
    if (handler.get() == nullptr)
        throw BAD_PARAM("a request needs a reply handler");

    activate(*handler.get());
    const auto now = Clock::now();
    const auto added =
        m_outstanding.add({handler, operation, link->number(), now + std::chrono::milliseconds(m_timeout_ms)},
                          now + blocking_time);
    if (!added) {
        deactivate(*handler.get());
        throw TIMEOUT("service '" + m_names.service + "': too many requests are waiting for their replies");
    }
    if (added->next_deadline_moved)
        m_loop.wake();

    fill_header(request, added->id, *link);
    const dds_return_t result = m_closed ? DDS_RETCODE_ALREADY_DELETED : link->write(operation, request);
    if (result == DDS_RETCODE_OK)
        return;

    m_outstanding.withdraw(added->id);
    deactivate(*handler.get());
    require_open();
    if (result == DDS_RETCODE_TIMEOUT)
        throw TIMEOUT("service '" + m_names.service + "' takes no more requests: its queues are full");
    check(result, "cannot send a request to service '" + m_names.service + "'");
}

void RequestChannel::send_and_wait(std::size_t operation, void* request, const Handler& handler)
{
    if (on_own_thread())
        throw BAD_INV_ORDER("a reply hook cannot wait for another reply of its own proxy");
    const auto outcome = std::make_shared<ReplyOutcome>();
    send(operation, request, Handler(new WaitingHandler(handler, outcome)));
    if (outcome->wait() == ReplyOutcome::State::replied)
        return;
    require_open();
    throw TIMEOUT("service '" + m_names.service + "' did not reply within " + std::to_string(timeout()) +
                  " ms");
}

void RequestChannel::run()
{
    try {
        while (!m_closed) {
            m_loop.dispatch(time_to_next_task());
            give_up_the_overdue();
            tend_servers();
            tend_links();
        }
    } catch (...) {
        report_current_exception("the connection to service '" + m_names.service + "' is lost:");
        m_closed = true;
    }
    report_given_up();
    let_go_of_links();
    const std::lock_guard lock(m_mutex);
    m_thread_id = std::thread::id();
    m_changed.notify_all();
}

void RequestChannel::let_go_of_links()
{
    m_candidate.reset();
    {
        const std::lock_guard lock(m_mutex);
        m_current.reset(); // it is one of the links
    }
    destroy_together(std::move(m_links));
    m_links.clear();
    m_partings.clear(); // waits for them
}

std::chrono::nanoseconds RequestChannel::time_to_next_task()
{
    const auto now = Clock::now();
    auto next = m_outstanding.plan_wake_up(now);
    if (m_candidate != nullptr && m_watch.live().size() > 1)
        next = std::min(next, m_out_of_patience);
    if (m_given_up > 0)
        next = std::min(next, m_next_report);
    for (const Link& link : m_links)
        next = std::min(next, link->care_due());
    if (m_links_need_care)
        next = now;
    return std::max(next, now) - now;
}

void RequestChannel::give_up_the_overdue()
{
    auto overdue = m_outstanding.take_expired(Clock::now());
    if (!overdue.empty()) {
        m_given_up += overdue.size();
        release(overdue);
        m_links_need_care = true;
    }
    if (Clock::now() >= m_next_report)
        report_given_up();
}

// At most once a second, for there may be thousands in a second when a server is dead.
void RequestChannel::report_given_up()
{
    if (m_given_up == 0)
        return;
    report("gave up " + std::to_string(std::exchange(m_given_up, 0)) + " requests to service '" +
           m_names.service + "': no reply in time");
    m_next_report = Clock::now() + report_pause;
}

void RequestChannel::deliver(const ServerLink& link, std::size_t operation, const void* sample)
{
    if (m_closed)
        return;
    const auto& header = *static_cast<const DDS_RMI_Request_Header*>(sample);
    const auto handler = m_outstanding.take(header.client_id.request_id, operation, link.number());
    if (!handler) {
        m_strays.count();
        return;
    }
    deactivate(*handler->get());
    DDS::ReadCondition condition(sample);
    try {
        (*handler)->handleReply(&condition);
    } catch (...) {
        report_current_exception(std::string("the reply hook of ") + m_interface.operations[operation].name);
    }
}

void RequestChannel::tend_servers()
{
    for (const Link& link : m_links)
        link->tend(Clock::now());
}

void RequestChannel::tend_links()
{
    const bool out_of_patience = m_candidate != nullptr && Clock::now() >= m_out_of_patience;
    if (!m_links_need_care && !out_of_patience)
        return;
    m_links_need_care = false;

    if (m_candidate != nullptr && m_candidate->connected())
        promote(std::exchange(m_candidate, nullptr));
    else if (m_candidate != nullptr && m_watch.find(m_candidate->server().path) == nullptr)
        m_candidate.reset();

    if (out_of_patience) {
        m_patience = std::min(2 * m_patience, longest_patience);
        m_out_of_patience = Clock::now() + m_patience;
    }
    if (const Announcement* const server = better_server(out_of_patience))
        connect(*server);
    drop_idle_links();
}

// A newer server of the same instance is the old one restarted, even if the old one's end has not shown yet.
// Without a connected server any will do: the newest first, then each gets its turn.
const Announcement* RequestChannel::better_server(bool next_please) const
{
    if (m_candidate != nullptr)
        return next_please ? m_watch.next_in_turn(m_candidate->server().path, connected_path())
                           : m_watch.successor(m_candidate->server());
    if (m_current != nullptr && m_current->connected())
        return m_watch.successor(m_current->server());
    return m_watch.newest_but(m_current == nullptr ? std::string() : m_current->server().path);
}

std::string RequestChannel::connected_path() const
{
    return m_current != nullptr && m_current->connected() ? m_current->server().path : std::string();
}

void RequestChannel::connect(const Announcement& server)
{
    auto link = std::make_shared<ServerLink>(*m_participant, m_interface, server, blocking_time);
    m_out_of_patience = Clock::now() + m_patience;
    m_links.push_back(link);
    m_candidate = link;
    link->attach(
        m_loop,
        [this, link = link.get()](std::size_t operation, const void* sample) {
            deliver(*link, operation, sample);
        },
        [this] { m_links_need_care = true; });
}

void RequestChannel::promote(const Link& link)
{
    m_patience = first_patience;
    m_watch.set_predecessors_aside(link->server());
    {
        const std::lock_guard lock(m_mutex);
        m_current = link;
    }
    m_changed.notify_all();
}

// A link whose server owes it acknowledgements waits for them while it is destroyed, which must not keep
// replies of other servers from being delivered.
void RequestChannel::drop_idle_links()
{
    const auto first_idle =
        std::partition(m_links.begin(), m_links.end(), [this](const Link& link) { return !is_idle(link); });
    for (auto idle = first_idle; idle != m_links.end(); ++idle)
        if (!(*idle)->settled())
            m_partings.push_back(
                std::async(std::launch::async, [link = std::move(*idle)]() mutable { link.reset(); }));
    m_links.erase(first_idle, m_links.end());

    const auto has_ended = [](const std::future<void>& parting) {
        return parting.wait_for(std::chrono::seconds::zero()) == std::future_status::ready;
    };
    m_partings.erase(std::remove_if(m_partings.begin(), m_partings.end(), has_ended), m_partings.end());
}

bool RequestChannel::is_idle(const Link& link) const
{
    if (link == m_candidate || link == m_current)
        return false;
    return !m_outstanding.any_on(link->number());
}

RequestChannel::Link RequestChannel::usable_link()
{
    require_open();
    const std::lock_guard lock(m_mutex);
    if (m_current == nullptr || !m_current->connected())
        throw SERVICE_NOT_FOUND("service '" + m_names.service + "' is not available: no server offers it");
    return m_current;
}

void RequestChannel::fill_header(void* request, DDS::ULong id, const ServerLink& link) const
{
    auto& header = *static_cast<DDS_RMI_Request_Header*>(request);
    header.service_id.server_class = const_cast<char*>(m_interface.server_class);
    header.service_id.server_impl = c_string(m_names.service);
    header.service_id.server_instance = link.server().instance;
    header.client_id.client_impl = c_string(m_names.proxy);
    header.client_id.client_instance = m_names.proxy_instance;
    header.client_id.request_id = id;
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
