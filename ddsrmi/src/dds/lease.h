// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_LEASE_H
#define DDSRMI_DDS_LEASE_H

#include <chrono>

#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

/// A participant whose endpoints the others keep for six times the lease that Cyclone is configured for (so
/// for a minute, as it comes) after it was last heard of. Until then, what it was sent is kept for it, so
/// that a process that has only been stopped, or cut off, misses nothing.
Entity create_patient_participant(dds_domainid_t domain);

/// The lease that Cyclone is configured for: how long a process may be silent and still be counted on.
std::chrono::nanoseconds configured_lease(const Entity& patient_participant);

} // namespace org::opensplice::DDS_RMI

#endif
