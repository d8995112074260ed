// SPDX-License-Identifier: Apache-2.0
#include "dds/lease.h"

#include "dds/qos.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr int patience_in_leases = 6;
const char* const cannot_join = "cannot join the DDS domain";

dds_duration_t lease_of(const Entity& participant)
{
    const Qos qos(dds_create_qos());
    check(dds_get_qos(participant.get(), qos.get()), "cannot read a participant's lease");
    dds_liveliness_kind_t kind{};
    dds_duration_t lease = DDS_INFINITY;
    dds_qget_liveliness(qos.get(), &kind, &lease);
    return lease;
}

// Read off a participant that has gone before another is made: Cyclone's first one in a domain serves the
// others.
dds_duration_t read_configured_lease(dds_domainid_t domain)
{
    return lease_of(Entity(dds_create_participant(domain, nullptr, nullptr), cannot_join));
}

dds_duration_t longer(dds_duration_t lease)
{
    return lease < DDS_INFINITY / patience_in_leases ? lease * patience_in_leases : DDS_INFINITY;
}

} // namespace

Entity create_patient_participant(dds_domainid_t domain)
{
    const Qos qos(dds_create_qos());
    dds_qset_liveliness(qos.get(), DDS_LIVELINESS_AUTOMATIC, longer(read_configured_lease(domain)));
    return Entity(dds_create_participant(domain, qos.get(), nullptr), cannot_join);
}

std::chrono::nanoseconds configured_lease(const Entity& patient_participant)
{
    return std::chrono::nanoseconds(lease_of(patient_participant) / patience_in_leases);
}

} // namespace org::opensplice::DDS_RMI
