// SPDX-License-Identifier: Apache-2.0
#include "server/request_sample.h"

#include <cstring>

namespace org::opensplice::DDS_RMI {

RequestSample::RequestSample()
    : m_request(static_cast<DDS_RMI_Request*>(
          std::memset(dds_alloc(sizeof(DDS_RMI_Request)), 0, sizeof(DDS_RMI_Request))))
{
}

RequestSample::~RequestSample()
{
    dds_sample_free(m_request, &DDS_RMI_Request_desc, DDS_FREE_ALL);
}

void RequestSample::drop_arguments()
{
    auto& arguments = m_request->arguments;
    if (arguments._release)
        dds_free(arguments._buffer);
    arguments = {};
}

bool RequestSample::take(dds_entity_t reader)
{
    void* sample = m_request;
    return dds_take(reader, &sample, &m_info, 1, 1) > 0;
}

} // namespace org::opensplice::DDS_RMI
