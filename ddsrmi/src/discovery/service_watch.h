// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DISCOVERY_SERVICE_WATCH_H
#define DDSRMI_DISCOVERY_SERVICE_WATCH_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "dds/entity.h"
#include "dds/entity_listener.h"
#include "dds/signal.h"
#include "discovery/announcement.h"

namespace org::opensplice::DDS_RMI {

/// One server that serves a service: each time that a service is run is a server of its own.
struct Server
{
    Announcement announcement;
    std::string path; ///< the partition in which this server takes requests; different for every server
    dds_instance_handle_t reader;
};

/// Knows which servers announce a service. It belongs to one thread.
class ServiceWatch
{
public:
    static constexpr DDS::Long any_instance = -1;

    /// `signal` is raised when refresh() may find something new.
    ServiceWatch(const Entity& participant, const std::string& service, DDS::Long instance,
                 std::shared_ptr<Signal> signal);

    /// Whether anything may have changed.
    bool refresh();

    /// The servers that are there, those that started later behind.
    const std::vector<Server>& live() const { return m_live; }

    // All of these give null when there is no such server; the empty path is no server's.
    const Server* find(const std::string& path) const;
    const Server* newest_but(const std::string& path) const;
    /// The newest server that was started after `server` and has the same instance number.
    const Server* successor(const Server& server) const;
    /// The one started before the one with `path`, or the newest after the oldest; never `path` or
    /// `excluded`.
    const Server* next_in_turn(const std::string& path, const std::string& excluded) const;

    /// To be called when a server has been reached: those of the same instance that came before it are most
    /// likely dead, and no longer counted as live until no other server is there.
    void set_predecessors_aside(const Server& server);

private:
    /// What Cyclone's threads share with the watch.
    struct News
    {
        std::shared_ptr<Signal> signal;
        std::atomic<bool> there{true};
    };

    void admit(const dds_builtintopic_endpoint_t& reader, dds_instance_handle_t handle);
    void forget(dds_instance_handle_t handle);

    std::string m_service;
    DDS::Long m_instance;
    std::shared_ptr<News> m_news;
    std::unique_ptr<EntityListener> m_listener;
    Entity m_readers; // of others: Cyclone's own topic of what it has discovered
    std::vector<Server> m_live;
    std::vector<Server> m_set_aside;
};

} // namespace org::opensplice::DDS_RMI

#endif
