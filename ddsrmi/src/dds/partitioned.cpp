// SPDX-License-Identifier: Apache-2.0
#include "dds/partitioned.h"

namespace org::opensplice::DDS_RMI {

Partitioned Partitioned::reader(const Entity& participant, const Entity& topic, const std::string& partition,
                                const Qos& qos, const EntityListener& listener)
{
    Partitioned made;
    made.m_group = Entity(dds_create_subscriber(participant.get(), partition_qos(partition).get(), nullptr),
                          "cannot create a subscriber");
    made.m_endpoint = Entity(dds_create_reader(made.m_group.get(), topic.get(), qos.get(), listener.get()),
                             "cannot create a reader");
    return made;
}

Partitioned Partitioned::writer(const Entity& participant, const Entity& topic, const std::string& partition,
                                const Qos& qos, const EntityListener& listener)
{
    Partitioned made;
    made.m_group = Entity(dds_create_publisher(participant.get(), partition_qos(partition).get(), nullptr),
                          "cannot create a publisher");
    made.m_endpoint = Entity(dds_create_writer(made.m_group.get(), topic.get(), qos.get(), listener.get()),
                             "cannot create a writer");
    return made;
}

} // namespace org::opensplice::DDS_RMI
