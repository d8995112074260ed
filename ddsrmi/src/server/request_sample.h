// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_REQUEST_SAMPLE_H
#define DDSRMI_SERVER_REQUEST_SAMPLE_H

#include <dds/dds.h>

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

/// A message of a client in memory of its own, so that it can wait for a thread.
class RequestSample
{
public:
    RequestSample();
    ~RequestSample();
    RequestSample(const RequestSample&) = delete;
    RequestSample& operator=(const RequestSample&) = delete;

    /// Takes one sample out of a reader of requests; false when there is none.
    bool take(dds_entity_t reader);

    /// Frees the arguments of what is not going to be run.
    void drop_arguments();

    /// Not const: texts among the arguments are handed out where they are.
    DDS_RMI_Request& request() { return *m_request; }
    dds_instance_handle_t writer() const { return m_info.publication_handle; }
    bool is_valid() const { return m_info.valid_data; }

private:
    DDS_RMI_Request* m_request;
    dds_sample_info_t m_info{};
};

} // namespace org::opensplice::DDS_RMI

#endif
