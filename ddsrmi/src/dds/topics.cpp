// SPDX-License-Identifier: Apache-2.0
#include "dds/topics.h"

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

namespace {

Entity create_topic(const Entity& participant, const dds_topic_descriptor_t& type, const char* name)
{
    return Entity(dds_create_topic(participant.get(), &type, name, nullptr, nullptr),
                  std::string("cannot create the topic ") + name);
}

} // namespace

Entity create_request_topic(const Entity& participant, const InterfaceInfo& interface_info)
{
    return create_topic(participant, DDS_RMI_Request_desc, interface_info.request_topic);
}

Entity create_reply_topic(const Entity& participant, const InterfaceInfo& interface_info)
{
    return create_topic(participant, DDS_RMI_Reply_desc, interface_info.reply_topic);
}

} // namespace org::opensplice::DDS_RMI
