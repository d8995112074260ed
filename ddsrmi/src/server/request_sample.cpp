// SPDX-License-Identifier: Apache-2.0
#include "server/request_sample.h"

#include <cstring>

namespace org::opensplice::DDS_RMI {

RequestSample::RequestSample(const dds_topic_descriptor_t& type)
    : m_type(type), m_data(std::memset(dds_alloc(type.m_size), 0, type.m_size))
{
}

RequestSample::~RequestSample()
{
    dds_sample_free(m_data, &m_type, DDS_FREE_ALL);
}

bool RequestSample::take(dds_entity_t reader)
{
    return dds_take(reader, &m_data, &m_info, 1, 1) > 0;
}

} // namespace org::opensplice::DDS_RMI
