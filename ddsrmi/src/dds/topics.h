// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_TOPICS_H
#define DDSRMI_DDS_TOPICS_H

#include "dds/entity.h"
#include "ddsrmi/interface_info.h"

namespace org::opensplice::DDS_RMI {

/// The topic on which the clients of an interface write.
Entity create_request_topic(const Entity& participant, const InterfaceInfo& interface_info);
/// The topic on which its servers answer.
Entity create_reply_topic(const Entity& participant, const InterfaceInfo& interface_info);

} // namespace org::opensplice::DDS_RMI

#endif
