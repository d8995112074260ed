// SPDX-License-Identifier: Apache-2.0
#include "server/outgoing_reply.h"

#include "dds_rmi.h"

namespace org::opensplice::DDS_RMI {

namespace {

char* c_string(const std::string& text)
{
    return const_cast<char*>(text.c_str()); // the sample is only read
}

} // namespace

const void* OutgoingReply::sample(const ServiceIdentity& service)
{
    void* const sample = reply->sample();
    auto& header = *static_cast<DDS_RMI_Request_Header*>(sample);
    header.service_id.server_class = c_string(service.server_class);
    header.service_id.server_impl = c_string(service.name);
    header.service_id.server_instance = service.instance;
    header.client_id.client_impl = c_string(client_impl);
    header.client_id.client_instance = client_instance;
    header.client_id.request_id = request_id;
    return sample;
}

} // namespace org::opensplice::DDS_RMI
