// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_TOPICS_H
#define DDSRMI_DDS_TOPICS_H

#include <string>

#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

Entity create_topic(const Entity& participant, const dds_topic_descriptor_t& type, const std::string& name);

/// The topic on which every service that is being served is announced.
Entity create_identification_topic(const Entity& participant);

/// The topic that tells the operations of an interface.
Entity create_definition_topic(const Entity& participant);

} // namespace org::opensplice::DDS_RMI

#endif
