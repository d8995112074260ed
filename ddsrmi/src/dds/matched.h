// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_MATCHED_H
#define DDSRMI_DDS_MATCHED_H

#include <dds/dds.h>

#include <memory>
#include <vector>

namespace org::opensplice::DDS_RMI {

struct EndpointDeleter
{
    void operator()(dds_builtintopic_endpoint_t* endpoint) const noexcept
    {
        dds_builtintopic_free_endpoint(endpoint);
    }
};
/// What is known of a matched reader or writer; null when it has gone.
using MatchedEndpoint = std::unique_ptr<dds_builtintopic_endpoint_t, EndpointDeleter>;

/// The handles of all that match, in ascending order.
std::vector<dds_instance_handle_t> matched_writers(dds_entity_t reader);
std::vector<dds_instance_handle_t> matched_readers(dds_entity_t writer);

} // namespace org::opensplice::DDS_RMI

#endif
