// SPDX-License-Identifier: Apache-2.0
#include "server/served_interface.h"

#include <utility>

#include "dds/greeting.h"
#include "dds/path_name.h"
#include "dds/qos.h"
#include "dds/topics.h"
#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

ServedInterface::ServedInterface(std::shared_ptr<Entity> participant, std::shared_ptr<RequestTeam> team,
                                 const shared_ptr<CInterfaceSkeleton>& implementation,
                                 const std::string& name, DDS::Long instance)
    : m_participant(std::move(participant)), m_team(std::move(team)), m_implementation(implementation),
      m_interface(implementation->_interface_info()), m_identity{m_interface.server_class, name, instance},
      m_path(make_path_name(*m_participant)),
      m_misdirected("dropped a request to service '" + name +
                    "' that is for another server or from no known client"),
      m_subscriber(dds_create_subscriber(m_participant->get(), partition_qos(m_path).get(), nullptr),
                   "cannot create the subscriber of requests"),
      m_clients(m_participant, m_interface, m_identity, m_path)
{
}

void ServedInterface::open(bool durable)
{
    m_intakes.reserve(m_interface.operation_count);
    for (std::size_t i = 0; i < m_interface.operation_count; ++i)
        m_intakes.push_back(make_intake(i));
    announce(durable);
}

void ServedInterface::close(bool wait)
{
    m_closed = true;
    m_definition_writer = Entity();
    m_identification_writer = Entity();
    m_intakes.clear();
    if (wait)
        m_team->forget(this);
}

ServedInterface::Intake ServedInterface::make_intake(std::size_t operation)
{
    const OperationInfo& info = m_interface.operations[operation];
    const std::string what = std::string("cannot create a reader of ") + info.request_topic;
    Intake intake;
    intake.topic = create_topic(*m_participant, *info.request_type, info.request_topic);
    intake.flag = m_team->arrivals().make_arrival_flag();
    intake.reader = Entity(dds_create_reader(m_subscriber.get(), intake.topic.get(),
                                             exchange_qos(std::chrono::nanoseconds::zero()).get(),
                                             intake.flag->listener().get()),
                           what);
    intake.any_request = Entity(dds_create_readcondition(intake.reader.get(), DDS_ANY_STATE), what);
    intake.attachment = m_team->arrivals().attach(
        intake.any_request.get(),
        [this, operation, reader = intake.reader.get()] { take_in(operation, reader); }, intake.flag);
    return intake;
}

void ServedInterface::take_in(std::size_t operation, dds_entity_t reader)
{
    const dds_topic_descriptor_t& type = *m_interface.operations[operation].request_type;
    auto request = std::make_shared<RequestSample>(type);
    while (request->take(reader)) {
        if (!request->info().valid_data) {
            answer_greeting(operation, request->info());
            continue;
        }
        m_team->arrived(
            {this, request->info().source_timestamp,
             [self = shared_from_this(), operation, request] { self->serve(operation, *request); }});
        request = std::make_shared<RequestSample>(type);
    }
}

void ServedInterface::answer_greeting(std::size_t operation, const dds_sample_info_t& info)
{
    if (!is_greeting(info))
        return;
    if (const auto client = m_clients.path_of(info.publication_handle))
        client->greet(operation);
}

void ServedInterface::serve(std::size_t operation, const RequestSample& request)
{
    if (m_closed)
        return;
    const auto client = is_for_me(request) ? m_clients.path_of(request.info().publication_handle) : nullptr;
    if (client == nullptr) {
        m_misdirected.count();
        return;
    }
    auto reply = run(operation, request);
    if (reply == nullptr)
        return;
    const auto& id = static_cast<const DDS_RMI_Request_Header*>(request.data())->client_id;
    client->send(operation, {std::move(reply), id.client_impl, id.client_instance, id.request_id});
}

bool ServedInterface::is_for_me(const RequestSample& request) const
{
    const auto& id = static_cast<const DDS_RMI_Request_Header*>(request.data())->service_id;
    return id.server_impl == m_identity.name && id.server_instance == m_identity.instance;
}

std::unique_ptr<ReplySample> ServedInterface::run(std::size_t operation, const RequestSample& request)
{
    try {
        return m_implementation->_dispatch(operation, request.data());
    } catch (...) {
        report_current_exception(std::string("the implementation of ") +
                                 m_interface.operations[operation].name);
        return nullptr;
    }
}

void ServedInterface::announce(bool durable)
{
    const Entity definition_topic = create_definition_topic(*m_participant);
    const Entity identification_topic = create_identification_topic(*m_participant);
    Qos qos = announcement_qos(durable);
    set_path_name(qos, m_path);
    m_definition_writer =
        Entity(dds_create_writer(m_participant->get(), definition_topic.get(), qos.get(), nullptr),
               "cannot create the writer of interface definitions");
    m_identification_writer =
        Entity(dds_create_writer(m_participant->get(), identification_topic.get(), qos.get(), nullptr),
               "cannot create the writer of service announcements");

    std::vector<char*> names;
    for (std::size_t i = 0; i < m_interface.operation_count; ++i)
        names.push_back(const_cast<char*>(m_interface.operations[i].name));
    DDS_RMI_Definition definition{};
    definition.server_class = const_cast<char*>(m_interface.server_class);
    definition.server_api._buffer = names.data();
    definition.server_api._length = static_cast<std::uint32_t>(names.size());
    definition.server_api._maximum = definition.server_api._length;
    check(dds_write(m_definition_writer.get(), &definition), "cannot announce an interface");

    DDS_RMI_Identification identification{};
    identification.server_class = const_cast<char*>(m_interface.server_class);
    identification.server_impl = const_cast<char*>(m_identity.name.c_str());
    identification.server_instance = m_identity.instance;
    check(dds_write(m_identification_writer.get(), &identification), "cannot announce a service");
}

} // namespace org::opensplice::DDS_RMI
