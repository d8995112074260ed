// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_SERVICE_WATCH_H
#define DDSRMI_CLIENT_SERVICE_WATCH_H

#include <string>
#include <vector>

#include "dds/entity.h"
#include "ddsrmi/dds_types.h"

namespace org::opensplice::DDS_RMI {

/// One server that serves a service: each time that a service is run gives an announcement of its own.
struct Announcement
{
    std::string server_class;
    DDS::Long instance;
    std::string path; ///< names the partition in which this server takes requests
    dds_instance_handle_t publication;
};

/// Knows which servers announce a service. Not thread-safe.
class ServiceWatch
{
public:
    static constexpr DDS::Long any_instance = -1;

    ServiceWatch(const Entity& participant, bool durable, const std::string& service, DDS::Long instance);

    /// Triggered when refresh() may find something new.
    dds_entity_t entity() const { return m_reader.get(); }

    void refresh();

    /// The servers that are there, in the order in which they were heard of.
    const std::vector<Announcement>& live() const { return m_live; }

    // All of these give null when there is no such server; the empty path is no server's.
    const Announcement* find(const std::string& path) const;
    const Announcement* newest_but(const std::string& path) const;
    /// The newest server that has been heard of after `server` and has the same instance number.
    const Announcement* successor(const Announcement& server) const;
    /// The one heard of before the one with `path`, or the newest after the oldest; never `path` or
    /// `excluded`.
    const Announcement* next_in_turn(const std::string& path, const std::string& excluded) const;

    /// To be called when a server has been reached: those of the same instance that came before it are most
    /// likely dead, even if that has not shown yet. They are live() again only once nothing else is.
    void set_predecessors_aside(const Announcement& server);

private:
    void take_announcements();
    void forget_the_gone(std::vector<Announcement>& announcements) const;
    void admit(const void* sample, const dds_sample_info_t& info);

    std::string m_service;
    DDS::Long m_instance;
    Entity m_topic;
    Entity m_reader;
    std::vector<Announcement> m_live;
    std::vector<Announcement> m_set_aside;
};

} // namespace org::opensplice::DDS_RMI

#endif
