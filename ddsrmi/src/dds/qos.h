// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_QOS_H
#define DDSRMI_DDS_QOS_H

#include <dds/dds.h>

#include <memory>
#include <optional>
#include <string>

namespace org::opensplice::DDS_RMI {

struct QosDeleter
{
    void operator()(dds_qos_t* qos) const noexcept { dds_delete_qos(qos); }
};
using Qos = std::unique_ptr<dds_qos_t, QosDeleter>;

/// For publishers and subscribers of one partition.
Qos partition_qos(const std::string& partition);

/// For the readers and writers that carry requests and replies: reliable, and every sample is kept until it
/// has been taken. A writer whose queue is full refuses.
Qos exchange_qos();

/// A text that travels with an endpoint to those that discover it.
void set_user_data(Qos& qos, const std::string& text);
std::string user_data(const dds_qos_t& qos);

/// The one partition of a discovered endpoint; nothing when that is no path name of its own participant's:
/// only who made a path takes what is sent on it.
std::optional<std::string> path_of(const dds_builtintopic_endpoint_t& endpoint);

} // namespace org::opensplice::DDS_RMI

#endif
