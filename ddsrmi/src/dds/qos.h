// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_QOS_H
#define DDSRMI_DDS_QOS_H

#include <dds/dds.h>

#include <chrono>
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
/// has been taken. A writer whose queue is full blocks for `blocking_time`.
Qos exchange_qos(std::chrono::nanoseconds blocking_time);

/// For announcements; durable ones reach readers that come later.
Qos announcement_qos(bool durable);

/// A name that travels with an endpoint to those that discover it.
void set_path_name(Qos& qos, const std::string& name);
/// The path name of a discovered endpoint; nothing when it has none that set_path_name could have set.
std::optional<std::string> path_name(const dds_qos_t& qos);

/// Whether an endpoint with this QoS is in the partition of exactly that name.
bool in_partition(const dds_qos_t& qos, const std::string& partition);

} // namespace org::opensplice::DDS_RMI

#endif
