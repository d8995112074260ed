// SPDX-License-Identifier: Apache-2.0
#include "server/client_directory.h"

#include <utility>

#include "dds/loan.h"
#include "dds/qos.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

ClientDirectory::ClientDirectory(std::shared_ptr<Entity> participant, const InterfaceInfo& interface_info,
                                 const ServiceIdentity& service, std::string service_path)
    : m_participant(std::move(participant)), m_interface(interface_info), m_service(service),
      m_service_path(std::move(service_path)), m_loop(*m_participant),
      m_publications(
          dds_create_reader(m_participant->get(), DDS_BUILTIN_TOPIC_DCPSPUBLICATION, nullptr, nullptr),
          "cannot watch for clients"),
      m_any_publication(dds_create_readcondition(m_publications.get(), DDS_ANY_STATE),
                        "cannot watch for clients"),
      m_attachment(m_loop.attach(m_any_publication.get(), [this] { take_publications_in(); })),
      m_thread([this] { run(); })
{
}

ClientDirectory::~ClientDirectory()
{
    m_closing = true;
    m_loop.wake();
    m_thread.join();
}

ClientDirectory::Path ClientDirectory::path_of(dds_instance_handle_t publication)
{
    if (Path known = find(publication))
        return known;
    // A writer is published before its requests arrive, but a request may be quicker than this directory's
    // thread.
    take_publications_in();
    return find(publication);
}

void ClientDirectory::run()
{
    while (!m_closing) {
        try {
            m_loop.dispatch(std::chrono::nanoseconds::max());
        } catch (...) {
            report_current_exception("watching for the clients of service '" + m_service.name + "'");
        }
    }
}

void ClientDirectory::take_publications_in()
{
    const std::lock_guard intake(m_intake_mutex);
    take_all(m_publications.get(), [this](const void* sample, const dds_sample_info_t& info) {
        if (info.instance_state != DDS_ALIVE_INSTANCE_STATE)
            forget(info.instance_handle);
        else if (info.valid_data)
            admit(info.instance_handle, *static_cast<const dds_builtintopic_endpoint_t*>(sample)->qos);
    });
}

ClientDirectory::Path ClientDirectory::find(dds_instance_handle_t publication)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_writers.find(publication);
    return found == m_writers.end() ? nullptr : found->second.path;
}

void ClientDirectory::admit(dds_instance_handle_t publication, const dds_qos_t& qos)
{
    const auto client = path_name(qos);
    if (!client || !in_partition(qos, m_service_path))
        return;
    const Path path = path_to(*client);
    const std::lock_guard lock(m_mutex);
    if (m_writers.emplace(publication, Writer{path, *client}).second)
        ++m_clients[*client].writers;
}

ClientDirectory::Path ClientDirectory::path_to(const std::string& client)
{
    {
        const std::lock_guard lock(m_mutex);
        if (const auto known = m_clients.find(client); known != m_clients.end())
            return known->second.path;
    }
    Path path = std::make_shared<ClientPath>(*m_participant, m_loop, m_interface, m_service, client);
    const std::lock_guard lock(m_mutex);
    m_clients[client].path = path;
    return path;
}

void ClientDirectory::forget(dds_instance_handle_t publication)
{
    Path gone; // let go after the lock
    const std::lock_guard lock(m_mutex);
    const auto writer = m_writers.find(publication);
    if (writer == m_writers.end())
        return;
    const auto client = m_clients.find(writer->second.client);
    gone = std::move(writer->second.path);
    m_writers.erase(writer);
    if (--client->second.writers == 0)
        m_clients.erase(client);
}

} // namespace org::opensplice::DDS_RMI
