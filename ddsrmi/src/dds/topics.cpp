// SPDX-License-Identifier: Apache-2.0
#include "dds/topics.h"

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

Entity create_topic(const Entity& participant, const dds_topic_descriptor_t& type, const std::string& name)
{
    return Entity(dds_create_topic(participant.get(), &type, name.c_str(), nullptr, nullptr),
                  "cannot create the topic " + name);
}

Entity create_identification_topic(const Entity& participant)
{
    return create_topic(participant, DDS_RMI_Identification_desc, "DDS_ServiceIdentification");
}

Entity create_definition_topic(const Entity& participant)
{
    return create_topic(participant, DDS_RMI_Definition_desc, "DDS_ServiceDefinition");
}

} // namespace org::opensplice::DDS_RMI
