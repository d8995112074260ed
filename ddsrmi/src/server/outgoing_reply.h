// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_OUTGOING_REPLY_H
#define DDSRMI_SERVER_OUTGOING_REPLY_H

#include <memory>
#include <string>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/interface_skeleton.h"

namespace org::opensplice::DDS_RMI {

/// Who serves: the same for every reply of a service.
struct ServiceIdentity
{
    std::string server_class;
    std::string name;
    DDS::Long instance;
};

/// A reply and the request that it belongs to.
struct OutgoingReply
{
    std::unique_ptr<ReplySample> reply;
    std::string client_impl;
    DDS::Long client_instance;
    DDS::ULong request_id;

    /// The sample with its header filled in; it points into this object and into `service`.
    const void* sample(const ServiceIdentity& service);
};

} // namespace org::opensplice::DDS_RMI

#endif
