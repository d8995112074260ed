// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_GREETING_H
#define DDSRMI_DDS_GREETING_H

#include <dds/dds.h>

#include <string>

namespace org::opensplice::DDS_RMI {

// A matched writer's first sample may still be lost to its reader and come late, after a retransmission;
// calls of different operations would then be run in another order than they were made in. So client and
// server exchange one sample without content on every topic before the first request: the disposal of an
// instance that nobody uses.

/// A Cyclone return code. `type` is the type of the writer's topic; `path` names the client's path, so that
/// the greetings of several clients are of different instances: a reader shows one disposal of an instance
/// once, however many writers have disposed of it.
dds_return_t send_greeting(dds_entity_t writer, const dds_topic_descriptor_t& type, std::string path);

inline bool is_greeting(const dds_sample_info_t& info)
{
    return !info.valid_data && info.instance_state == DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE;
}

} // namespace org::opensplice::DDS_RMI

#endif
