// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_MATCHED_ENDPOINT_H
#define DDSRMI_DDS_MATCHED_ENDPOINT_H

#include <dds/dds.h>

#include <memory>

namespace org::opensplice::DDS_RMI {

struct EndpointDeleter
{
    void operator()(dds_builtintopic_endpoint_t* endpoint) const noexcept
    {
        dds_builtintopic_free_endpoint(endpoint);
    }
};
using Endpoint = std::unique_ptr<dds_builtintopic_endpoint_t, EndpointDeleter>;

/// The writer behind a sample; null when it is not matched (any more).
inline Endpoint matched_writer(dds_entity_t reader, dds_instance_handle_t publication)
{
    return Endpoint(dds_get_matched_publication_data(reader, publication));
}

} // namespace org::opensplice::DDS_RMI

#endif
