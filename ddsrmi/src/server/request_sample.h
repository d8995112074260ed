// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_REQUEST_SAMPLE_H
#define DDSRMI_SERVER_REQUEST_SAMPLE_H

#include <dds/dds.h>

namespace org::opensplice::DDS_RMI {

/// A request in memory of its own, so that it can wait for a thread.
class RequestSample
{
public:
    explicit RequestSample(const dds_topic_descriptor_t& type);
    ~RequestSample();
    RequestSample(const RequestSample&) = delete;
    RequestSample& operator=(const RequestSample&) = delete;

    /// Takes one sample out of a reader of the type; false when there is none.
    bool take(dds_entity_t reader);

    const void* data() const { return m_data; }
    const dds_sample_info_t& info() const { return m_info; }

private:
    const dds_topic_descriptor_t& m_type;
    void* m_data;
    dds_sample_info_t m_info{};
};

} // namespace org::opensplice::DDS_RMI

#endif
