// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_LEASE_H
#define DDSRMI_DDS_LEASE_H

#include <dds/dds.h>

#include <chrono>

#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

/// How long a process may be silent and still be counted on: the `LeaseDuration` of Cyclone's configuration
/// (CYCLONEDDS_URI), 10 s where it names none. Its last one counts, whichever domain it stands under.
std::chrono::nanoseconds configured_lease();

/// A participant whose endpoints the others keep for six leases (so for a minute, as it comes) after it was
/// last heard of. Until then, what it was sent is kept for it, so that a process that has only been stopped,
/// or cut off, misses nothing.
Entity create_patient_participant(dds_domainid_t domain);

} // namespace org::opensplice::DDS_RMI

#endif
