// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_REQUEST_SAMPLE_H
#define DDSRMI_SERVER_REQUEST_SAMPLE_H

#include <dds/dds.h>

#include <array>
#include <cstddef>
#include <memory>

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

/// A message of a client in memory of its own, so that it can wait for a thread.
class RequestSample
{
public:
    using Batch = std::array<std::unique_ptr<RequestSample>, 8>;

    RequestSample();
    ~RequestSample();
    RequestSample(const RequestSample&) = delete;
    RequestSample& operator=(const RequestSample&) = delete;

    /// Takes samples out of a reader of requests, into the first of these; gives how many.
    static std::size_t take(dds_entity_t reader, Batch& into);

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
