// SPDX-License-Identifier: Apache-2.0
#include "discovery/service_watch.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "dds/loan.h"
#include "dds/qos.h"
#include "report.h"
#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

namespace {

// The same order everywhere, also for two that started in the same nanosecond.
bool started_before(const Server& one, const Server& other)
{
    return std::tie(one.announcement.epoch, one.path) < std::tie(other.announcement.epoch, other.path);
}

void erase_reader(std::vector<Server>& servers, dds_instance_handle_t reader)
{
    servers.erase(std::remove_if(servers.begin(), servers.end(),
                                 [reader](const Server& one) { return one.reader == reader; }),
                  servers.end());
}

CountedReport& other_wire_versions()
{
    static auto& counted =
        *new CountedReport("ignored a server whose RMI layer is of another version than this "
                           "process's: use the same release of libddsrmi on both sides");
    return counted;
}

} // namespace

ServiceWatch::ServiceWatch(const Entity& participant, const std::string& service, DDS::Long instance,
                           std::shared_ptr<Signal> signal)
    : m_service(service), m_instance(instance), m_news(std::make_shared<News>())
{
    m_news->signal = std::move(signal);
    m_listener = std::make_unique<EntityListener>(EntityListener::Actions{[news = m_news] {
                                                                              news->there = true;
                                                                              news->signal->raise();
                                                                          },
                                                                          {}});
    m_readers = Entity(
        dds_create_reader(participant.get(), DDS_BUILTIN_TOPIC_DCPSSUBSCRIPTION, nullptr, m_listener->get()),
        "cannot watch for servers");
}

bool ServiceWatch::refresh()
{
    if (!m_news->there.exchange(false))
        return false;
    take_all(m_readers.get(), [this](const void* sample, const dds_sample_info_t& info) {
        if (info.instance_state != DDS_ALIVE_INSTANCE_STATE)
            forget(info.instance_handle);
        else if (info.valid_data)
            admit(*static_cast<const dds_builtintopic_endpoint_t*>(sample), info.instance_handle);
    });
    if (m_live.empty())
        m_live.swap(m_set_aside);
    return true;
}

void ServiceWatch::admit(const dds_builtintopic_endpoint_t& reader, dds_instance_handle_t handle)
{
    const std::string text = user_data(*reader.qos);
    const auto version = Announcement::version_of(text);
    if (version && *version != wire_version)
        other_wire_versions().count();
    auto announcement = Announcement::parse(text);
    if (!announcement || announcement->service != m_service)
        return;
    if (m_instance != any_instance && announcement->instance != m_instance)
        return;
    auto path = path_of(reader);
    if (!path || find(*path) != nullptr)
        return;
    Server server{std::move(*announcement), std::move(*path), handle};
    m_live.insert(std::upper_bound(m_live.begin(), m_live.end(), server, started_before), std::move(server));
}

void ServiceWatch::forget(dds_instance_handle_t handle)
{
    erase_reader(m_live, handle);
    erase_reader(m_set_aside, handle);
}

const Server* ServiceWatch::find(const std::string& path) const
{
    const auto found =
        std::find_if(m_live.begin(), m_live.end(), [&](const Server& one) { return one.path == path; });
    return found == m_live.end() ? nullptr : &*found;
}

const Server* ServiceWatch::newest_but(const std::string& path) const
{
    const auto found =
        std::find_if(m_live.rbegin(), m_live.rend(), [&](const Server& one) { return one.path != path; });
    return found == m_live.rend() ? nullptr : &*found;
}

const Server* ServiceWatch::successor(const Server& server) const
{
    const auto found = std::find_if(m_live.rbegin(), m_live.rend(), [&](const Server& one) {
        return one.announcement.instance == server.announcement.instance;
    });
    return found != m_live.rend() && started_before(server, *found) ? &*found : nullptr;
}

const Server* ServiceWatch::next_in_turn(const std::string& path, const std::string& excluded) const
{
    const Server* newest = nullptr;
    bool passed = false;
    for (auto one = m_live.rbegin(); one != m_live.rend(); ++one) {
        if (one->path == path) {
            passed = true;
        } else if (one->path != excluded) {
            if (passed)
                return &*one;
            if (newest == nullptr)
                newest = &*one;
        }
    }
    return newest;
}

void ServiceWatch::set_predecessors_aside(const Server& server)
{
    const auto first = std::stable_partition(m_live.begin(), m_live.end(), [&](const Server& one) {
        return one.announcement.instance != server.announcement.instance || !started_before(one, server);
    });
    m_set_aside.insert(m_set_aside.end(), std::make_move_iterator(first),
                       std::make_move_iterator(m_live.end()));
    m_live.erase(first, m_live.end());
}

} // namespace org::opensplice::DDS_RMI
