// SPDX-License-Identifier: Apache-2.0
#include "dds/greeting.h"

#include <cstdint>
#include <vector>

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

dds_return_t send_greeting(dds_entity_t writer, const dds_topic_descriptor_t& type, std::string path)
{
    std::vector<std::uint64_t> blank(type.m_size / sizeof(std::uint64_t) + 1);
    reinterpret_cast<DDS_RMI_Request_Header*>(blank.data())->client_id.client_impl = path.data();
    return dds_dispose(writer, blank.data());
}

} // namespace org::opensplice::DDS_RMI
