// SPDX-License-Identifier: Apache-2.0
#include "client/service_watch.h"

#include <algorithm>

#include "dds/loan.h"
#include "dds/matched_endpoint.h"
#include "dds/qos.h"
#include "dds/topics.h"
#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

ServiceWatch::ServiceWatch(const Entity& participant, bool durable, const std::string& service,
                           DDS::Long instance)
    : m_service(service), m_instance(instance), m_topic(create_identification_topic(participant)),
      m_reader(dds_create_reader(participant.get(), m_topic.get(), announcement_qos(durable).get(), nullptr),
               "cannot create the reader of service announcements")
{
    check(dds_set_status_mask(m_reader.get(), DDS_DATA_AVAILABLE_STATUS | DDS_SUBSCRIPTION_MATCHED_STATUS),
          "cannot watch service announcements");
}

void ServiceWatch::refresh()
{
    dds_subscription_matched_status_t ignored{};
    dds_get_subscription_matched_status(m_reader.get(), &ignored);
    take_announcements();
    forget_the_gone(m_live);
    forget_the_gone(m_set_aside);
    if (m_live.empty())
        m_live.swap(m_set_aside);
}

const Announcement* ServiceWatch::find(const std::string& path) const
{
    const auto found =
        std::find_if(m_live.begin(), m_live.end(), [&](const Announcement& one) { return one.path == path; });
    return found == m_live.end() ? nullptr : &*found;
}

const Announcement* ServiceWatch::newest_but(const std::string& path) const
{
    const auto found = std::find_if(m_live.rbegin(), m_live.rend(),
                                    [&](const Announcement& one) { return one.path != path; });
    return found == m_live.rend() ? nullptr : &*found;
}

const Announcement* ServiceWatch::successor(const Announcement& server) const
{
    for (auto one = m_live.rbegin(); one != m_live.rend() && one->path != server.path; ++one)
        if (one->instance == server.instance)
            return &*one;
    return nullptr;
}

const Announcement* ServiceWatch::next_in_turn(const std::string& path, const std::string& excluded) const
{
    const Announcement* newest = nullptr;
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

void ServiceWatch::set_predecessors_aside(const Announcement& server)
{
    const auto found = std::find_if(m_live.begin(), m_live.end(),
                                    [&](const Announcement& one) { return one.path == server.path; });
    if (found == m_live.end())
        return;
    const auto first = std::stable_partition(
        m_live.begin(), found, [&](const Announcement& one) { return one.instance != server.instance; });
    m_set_aside.insert(m_set_aside.end(), first, found);
    m_live.erase(first, found);
}

void ServiceWatch::take_announcements()
{
    take_all(m_reader.get(), [this](const void* sample, const dds_sample_info_t& info) {
        if (info.valid_data)
            admit(sample, info);
    });
}

void ServiceWatch::admit(const void* sample, const dds_sample_info_t& info)
{
    const auto& announced = *static_cast<const DDS_RMI_Identification*>(sample);
    if (announced.server_impl != m_service)
        return;
    if (m_instance != any_instance && announced.server_instance != m_instance)
        return;
    const Endpoint writer = matched_writer(m_reader.get(), info.publication_handle);
    if (writer == nullptr)
        return;
    if (const auto path = path_name(*writer->qos))
        m_live.push_back({announced.server_class, announced.server_instance, *path, info.publication_handle});
}

void ServiceWatch::forget_the_gone(std::vector<Announcement>& announcements) const
{
    const auto gone = [this](const Announcement& one) {
        return matched_writer(m_reader.get(), one.publication) == nullptr;
    };
    announcements.erase(std::remove_if(announcements.begin(), announcements.end(), gone),
                        announcements.end());
}

} // namespace org::opensplice::DDS_RMI
