// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_SERVED_INTERFACE_H
#define DDSRMI_SERVER_SERVED_INTERFACE_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "dds/entity.h"
#include "dds/event_loop.h"
#include "ddsrmi/interface_skeleton.h"
#include "ddsrmi/shared_ptr.h"
#include "report.h"
#include "server/client_directory.h"
#include "server/outgoing_reply.h"
#include "server/request_sample.h"
#include "server/request_team.h"

namespace org::opensplice::DDS_RMI {

/// A service while it is being served: it takes requests in a partition of its own, has a team run them, and
/// sends the replies. Each time that a service is served is a new object with a new partition.
class ServedInterface : public std::enable_shared_from_this<ServedInterface>
{
public:
    ServedInterface(std::shared_ptr<Entity> participant, std::shared_ptr<RequestTeam> team,
                    const shared_ptr<CInterfaceSkeleton>& implementation, const std::string& name,
                    DDS::Long instance);

    /// Takes requests and tells the domain so. Call once, on an object that is held by a std::shared_ptr.
    void open(bool durable);

    /// Takes no more requests; with `wait`, returns when none is being run any more (but the one that calls
    /// this). Harmless when closed already.
    void close(bool wait);

private:
    struct Intake
    {
        Entity topic;
        std::shared_ptr<ArrivalFlag> flag;
        Entity reader;
        Entity any_request;
        EventLoop::Attachment attachment;
    };

    Intake make_intake(std::size_t operation);
    void take_in(std::size_t operation, dds_entity_t reader);
    void answer_greeting(std::size_t operation, const dds_sample_info_t& info);
    void serve(std::size_t operation, const RequestSample& request);
    bool is_for_me(const RequestSample& request) const;
    std::unique_ptr<ReplySample> run(std::size_t operation, const RequestSample& request);
    void announce(bool durable);

    const std::shared_ptr<Entity> m_participant;
    const std::shared_ptr<RequestTeam> m_team;
    const shared_ptr<CInterfaceSkeleton> m_implementation;
    const InterfaceInfo& m_interface;
    const ServiceIdentity m_identity;
    const std::string m_path;
    CountedReport m_misdirected;
    Entity m_subscriber;
    ClientDirectory m_clients;
    std::atomic<bool> m_closed{false};

    // Written by open() and close(), which one thread at a time calls.
    std::vector<Intake> m_intakes;
    Entity m_identification_writer;
    Entity m_definition_writer;
};

} // namespace org::opensplice::DDS_RMI

#endif
