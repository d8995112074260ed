// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_CLIENT_DIRECTORY_H
#define DDSRMI_SERVER_CLIENT_DIRECTORY_H

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>

#include "dds/entity.h"
#include "dds/event_loop.h"
#include "ddsrmi/interface_info.h"
#include "server/client_path.h"
#include "server/outgoing_reply.h"

namespace org::opensplice::DDS_RMI {

/// Knows the clients of one served interface. On a thread of its own it watches request writers appear and
/// disappear; a client's path is made when its first writer is heard of and goes with its last.
class ClientDirectory
{
public:
    /// `interface_info` and `service` must outlive the directory. `service_path` is the partition in which
    /// clients write their requests.
    ClientDirectory(std::shared_ptr<Entity> participant, const InterfaceInfo& interface_info,
                    const ServiceIdentity& service, std::string service_path);
    ~ClientDirectory();
    ClientDirectory(const ClientDirectory&) = delete;
    ClientDirectory& operator=(const ClientDirectory&) = delete;

    /// The path to the client whose request writer that is; null when it has gone or is no client's. Any
    /// thread.
    std::shared_ptr<ClientPath> path_of(dds_instance_handle_t publication);

private:
    using Path = std::shared_ptr<ClientPath>;
    struct Client
    {
        Path path;
        std::size_t writers = 0;
    };
    struct Writer
    {
        Path path;
        std::string client;
    };

    void run();
    void take_publications_in();
    Path find(dds_instance_handle_t publication);
    void admit(dds_instance_handle_t publication, const dds_qos_t& qos);
    Path path_to(const std::string& client);
    void forget(dds_instance_handle_t publication);

    const std::shared_ptr<Entity> m_participant;
    const InterfaceInfo& m_interface;
    const ServiceIdentity& m_service;
    const std::string m_service_path;
    EventLoop m_loop;
    Entity m_publications;
    Entity m_any_publication;
    EventLoop::Attachment m_attachment;

    // Held while publications are taken in, so that they are in order; taken before m_mutex.
    std::mutex m_intake_mutex;
    std::mutex m_mutex;
    std::unordered_map<std::string, Client> m_clients;           // guarded by m_mutex
    std::unordered_map<dds_instance_handle_t, Writer> m_writers; // guarded by m_mutex

    std::atomic<bool> m_closing{false};
    std::thread m_thread;
};

} // namespace org::opensplice::DDS_RMI

#endif
