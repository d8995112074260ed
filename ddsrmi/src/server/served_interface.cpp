// SPDX-License-Identifier: Apache-2.0
#include "server/served_interface.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iterator>
#include <numeric>
#include <utility>

#include "dds/lease.h"
#include "dds/matched.h"
#include "dds/path_name.h"
#include "dds/qos.h"
#include "dds/topics.h"
#include "wire/definition.h"
#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

namespace {

// How soon it is tried again to send what a slow client had no room for, and to find room for who wants more:
// soon, for most clients have room again at once; then seldom.
constexpr std::chrono::microseconds first_retry_pause{200};
constexpr std::chrono::milliseconds longest_retry_pause{5};
constexpr int looks_in_a_lease = 4;
constexpr std::size_t most_reported_differences = 100;
// Of messages other than calls; a client repeats those that matter.
constexpr std::uint64_t most_bytes_for_control = std::uint64_t{16} << 20U;

// The system clock is what processes on several hosts have in common. Where it is wrong a server may seem
// older than the one that it follows; clients then find it when that one is silent.
std::uint64_t now_as_epoch()
{
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(since).count());
}

Partitioned make_reader(const Entity& participant, const InterfaceInfo& interface_info,
                        const std::string& path, const Announcement& announcement,
                        const EntityListener& listener)
{
    Qos qos = exchange_qos();
    set_user_data(qos, announcement.to_text());
    return Partitioned::reader(participant, create_request_topic(participant, interface_info), path, qos,
                               listener);
}

// The reply path of the client whose request writer that is; empty when it has gone or is no client's.
std::string reply_path_of(const Partitioned& reader, dds_instance_handle_t writer)
{
    const MatchedEndpoint endpoint(dds_get_matched_publication_data(reader.get(), writer));
    if (endpoint == nullptr)
        return {};
    std::string path = user_data(*endpoint->qos);
    return is_path_name(path, endpoint->participant_key) ? path : std::string();
}

// What can be long in it.
std::size_t size_of_introduction(const DDS_RMI_Request& request)
{
    if (request.about_sender._length == 0)
        return 0;
    const auto& signatures = request.about_sender._buffer[0].interface_known.server_api;
    return std::accumulate(
        signatures._buffer, signatures._buffer + signatures._length, std::size_t{0},
        [](std::size_t size, const char* text) { return size + sizeof text + std::strlen(text); });
}

} // namespace

ServedInterface::ServedInterface(std::shared_ptr<Entity> participant, std::shared_ptr<RequestTeam> team,
                                 std::shared_ptr<Admission> admission,
                                 const shared_ptr<CInterfaceSkeleton>& skeleton, const std::string& name,
                                 DDS::Long instance)
    : m_participant(std::move(participant)),
      m_team(std::move(team)), m_service{std::make_shared<Implementation>(skeleton, name),
                                         std::move(admission)},
      m_interface(m_service.implementation->interface_info()), m_announcement{now_as_epoch(), instance,
                                                                              m_interface.server_class, name},
      m_path(make_path_name(*m_participant)), m_lease(configured_lease()),
      m_misdirected("dropped a message to service '" + name +
                    "' that is for another server or from no known client"),
      m_broken("ended a session of service '" + name + "' whose client sent what cannot follow"),
      m_begun_anew("began the session of a client of service '" + name + "' anew"),
      m_out_of_session("dropped a message to service '" + name +
                       "' in a session that its client does not have"),
      m_signal(std::make_shared<Signal>()), m_watch(*m_participant, name, instance, m_signal),
      m_listener({[this] { take_in(); },
                  [this](dds_instance_handle_t) {
                      m_matches_changed = true;
                      m_signal->raise();
                  }})
{
    {
        const std::lock_guard intake(m_intake_mutex);
        for (Sample& sample : m_next_samples)
            sample = std::make_unique<RequestSample>();
        m_reader = make_reader(*m_participant, m_interface, m_path, m_announcement, m_listener);
    }
    m_control = std::thread([this] { control(); });
}

ServedInterface::~ServedInterface()
{
    close(true);
}

void ServedInterface::close(bool wait)
{
    if (m_closed.exchange(true))
        return;
    {
        const std::lock_guard intake(m_intake_mutex); // what was being taken in is in its queue now
    }
    if (wait)
        m_team->forget(this);
    m_signal->raise();
    m_control.join();
    for (auto& [writer, client] : m_clients)
        if (client.session != nullptr)
            m_team->drop(client.session);
    m_clients.clear(); // waits up to a second for what the clients have not acknowledged
    Partitioned closing;
    {
        const std::lock_guard intake(m_intake_mutex);
        std::swap(m_reader, closing);
    }
}

void ServedInterface::take_in()
{
    const std::lock_guard intake(m_intake_mutex);
    std::size_t taken = m_next_samples.size();
    while (!m_closed && taken == m_next_samples.size()) {
        taken = RequestSample::take(m_reader.get(), m_next_samples);
        for (std::size_t i = 0; i < taken; ++i) {
            Sample sample = std::exchange(m_next_samples[i], std::make_unique<RequestSample>());
            if (sample->is_valid())
                take_in(std::move(sample));
        }
    }
}

void ServedInterface::take_in(Sample sample)
{
    const DDS_RMI_Request& request = sample->request();
    if (request.wire_version != wire_version) {
        m_misdirected.count();
        return;
    }
    const auto now = Clock::now();
    const Session session = session_of(*sample);
    if (session != nullptr)
        session->heard(now);
    if (session != nullptr && static_cast<RequestKind>(request.kind) == RequestKind::call)
        take_in_call(session, std::move(sample), now);
    else
        leave_to_control(std::move(sample));
}

ServedInterface::Session ServedInterface::session_of(const RequestSample& sample)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_sessions.find(const_cast<RequestSample&>(sample).request().session);
    return found != m_sessions.end() && found->second->client() == sample.writer() ? found->second : nullptr;
}

void ServedInterface::take_in_call(const Session& session, Sample sample, Clock::time_point now)
{
    bool should_tell = false;
    if (!session->admit(sample->request(), should_tell)) {
        m_broken.count();
        leave_to_control(std::move(sample));
        return;
    }
    if (should_tell) {
        {
            const std::lock_guard lock(m_mutex);
            m_to_tell.push_back(session);
        }
        m_signal->raise();
    }
    const auto deadline = now + std::chrono::milliseconds(sample->request().patience_ms);
    m_team->add(session, {std::move(sample), deadline});
}

void ServedInterface::leave_to_control(Sample sample)
{
    sample->drop_arguments();
    const std::uint64_t cost = cost_of(size_of_introduction(sample->request()));
    {
        const std::lock_guard lock(m_mutex);
        if (m_bytes_for_control + cost > most_bytes_for_control) {
            m_misdirected.count();
            return;
        }
        m_bytes_for_control += cost;
        m_for_control.push_back(std::move(sample));
    }
    m_signal->raise();
}

void ServedInterface::control()
{
    while (!m_closed) {
        m_signal->wait_until(next_task());
        try {
            std::vector<Sample> samples;
            std::vector<Session> to_tell;
            {
                const std::lock_guard lock(m_mutex);
                samples.swap(m_for_control);
                m_bytes_for_control = 0;
                to_tell.swap(m_to_tell);
            }
            watch_for_successor();
            follow_matches();
            for (const Sample& sample : samples)
                answer(*sample);
            for (const Session& session : to_tell)
                session->tell(ReplyKind::grant);
            tend_clients(Clock::now());
        } catch (...) {
            report_current_exception("tending the clients of service '" + m_announcement.service + "'");
        }
    }
}

Clock::time_point ServedInterface::next_task() const
{
    const bool somebody_lags = std::any_of(m_clients.begin(), m_clients.end(),
                                           [](const auto& entry) { return entry.second.path->is_lagging(); });
    if (somebody_lags || !m_starved.empty())
        return Clock::now() + m_retry_pause;
    return m_clients.empty() ? Clock::time_point::max() : m_last_tended + m_lease / looks_in_a_lease;
}

void ServedInterface::answer(RequestSample& sample)
{
    const DDS_RMI_Request& request = sample.request();
    Client* const client = client_of(sample.writer());
    if (client == nullptr) {
        m_misdirected.count();
        return;
    }
    const auto kind = static_cast<RequestKind>(request.kind);
    if (kind == RequestKind::hello) {
        answer_hello(sample, *client);
    } else if (client->session == nullptr || client->session->id() != request.session ||
               kind == RequestKind::call) { // one that was not admitted
        if (client->session != nullptr && client->session->id() == request.session)
            end_session(*client);
        else
            m_out_of_session.count();
        client->path->send({ReplyKind::forgotten, request.session, 0, {0, 0}, {}});
    } else if (kind == RequestKind::ping) {
        client->session->tell(ReplyKind::pong);
    } else if (kind == RequestKind::want) {
        if (!client->session->want({request.number, request.operation}))
            m_starved.insert(client->session);
        client->session->tell(ReplyKind::grant);
    } else {
        m_misdirected.count();
    }
}

ServedInterface::Client* ServedInterface::client_of(dds_instance_handle_t writer)
{
    const auto known = m_clients.find(writer);
    if (known != m_clients.end())
        return &known->second;
    const std::string path = reply_path_of(m_reader, writer);
    if (path.empty())
        return nullptr;
    Client client;
    client.path = std::make_shared<ReplyPath>(*m_participant, m_interface, path, m_signal);
    return &m_clients.emplace(writer, std::move(client)).first->second;
}

void ServedInterface::answer_hello(RequestSample& sample, Client& client)
{
    const DDS_RMI_Request& hello = sample.request();
    if (!is_for_me(hello)) {
        m_misdirected.count();
        return;
    }
    if (client.session == nullptr || client.meeting != hello.number)
        begin_session(client, sample);
    client.path->welcome(m_has_successor ? ReplyKind::second_choice : ReplyKind::welcome,
                         client.session->id(), client.meeting, client.session->granted(),
                         m_service.admission->per_session().bytes);
}

bool ServedInterface::is_for_me(const DDS_RMI_Request& hello) const
{
    if (hello.about_sender._length == 0)
        return false;
    const auto& service = hello.about_sender._buffer[0].parties.service_id;
    return service.server_impl == m_announcement.service &&
           service.server_instance == m_announcement.instance &&
           service.server_class == m_announcement.server_class;
}

void ServedInterface::begin_session(Client& client, const RequestSample& hello)
{
    if (client.session != nullptr)
        m_begun_anew.count();
    end_session(client);
    auto& request = const_cast<RequestSample&>(hello).request();
    report_differences(request.about_sender._buffer[0]);
    client.meeting = request.number;
    client.session = std::make_shared<ServerSession>(this, m_service, client.path, hello.writer());
    const std::lock_guard lock(m_mutex);
    m_sessions.emplace(client.session->id(), client.session);
}

// Each once, however many clients are of that version.
void ServedInterface::report_differences(const DDS_RMI_Introduction& introduction)
{
    for (const std::string& signature : unknown_to(m_interface, introduction.interface_known))
        if (m_reported_differences.size() < most_reported_differences &&
            m_reported_differences.insert(signature).second)
            report("a client of service '" + m_announcement.service +
                   "' has another version of the interface " + m_interface.server_class +
                   ": here is no operation " + signature);
}

void ServedInterface::end_session(Client& client)
{
    if (client.session == nullptr)
        return;
    const Session session = std::exchange(client.session, nullptr);
    client.paused = false;
    {
        const std::lock_guard lock(m_mutex);
        m_sessions.erase(session->id());
    }
    m_team->drop(session);
    session->end();
}

// A client says hello when it has heard of its reply writer, so that is made before.
void ServedInterface::follow_matches()
{
    if (!m_matches_changed.exchange(false))
        return;
    const auto matched = matched_writers(m_reader.get());
    for (auto client = m_clients.begin(); client != m_clients.end();) {
        if (std::binary_search(matched.begin(), matched.end(), client->first)) {
            ++client;
        } else {
            end_session(client->second);
            client = m_clients.erase(client);
        }
    }
    for (const dds_instance_handle_t writer : matched)
        client_of(writer);
}

// A client that is not heard of for a lease may be dead: nothing of it is run until it is heard of again. Nor
// while it does not take its replies in.
void ServedInterface::tend_clients(Clock::time_point now)
{
    const auto slept = now - m_last_tended > m_lease / 2 ? now - m_last_tended : Clock::duration::zero();
    m_last_tended = now;
    bool stuck = false;
    for (auto& [writer, client] : m_clients) {
        stuck = (!client.path->flush() && client.path->is_lagging()) || stuck;
        if (client.session == nullptr)
            continue;
        if (slept > Clock::duration::zero())
            client.session->heard(client.session->last_heard() + slept);
        const bool pause = now - client.session->last_heard() > m_lease || client.path->is_overfull();
        if (pause != client.paused)
            m_team->pause(client.session, pause);
        client.paused = pause;
    }
    stuck = !feed_the_starved() || stuck;
    m_retry_pause =
        stuck ? std::min<Clock::duration>(2 * m_retry_pause, longest_retry_pause) : first_retry_pause;
}

// Whether nobody is left who wants more room than there is.
bool ServedInterface::feed_the_starved()
{
    for (auto one = m_starved.begin(); one != m_starved.end();) {
        ServerSession& session = **one;
        const RoomUsed before = session.granted();
        const bool all = session.want({0, 0});
        const RoomUsed after = session.granted();
        if (after.bytes > before.bytes || after.requests > before.requests)
            session.tell(ReplyKind::grant);
        one = all ? m_starved.erase(one) : std::next(one);
    }
    return m_starved.empty();
}

void ServedInterface::watch_for_successor()
{
    if (!m_watch.refresh())
        return;
    m_has_successor = m_watch.successor({m_announcement, m_path, 0}) != nullptr;
}

} // namespace org::opensplice::DDS_RMI
