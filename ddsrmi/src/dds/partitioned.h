// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_PARTITIONED_H
#define DDSRMI_DDS_PARTITIONED_H

#include <string>

#include "dds/entity.h"
#include "dds/entity_listener.h"
#include "dds/qos.h"

namespace org::opensplice::DDS_RMI {

/// A reader or a writer in a partition of its own, with the subscriber or publisher that DDS wants for that.
class Partitioned
{
public:
    static Partitioned reader(const Entity& participant, const Entity& topic, const std::string& partition,
                              const Qos& qos, const EntityListener& listener);
    static Partitioned writer(const Entity& participant, const Entity& topic, const std::string& partition,
                              const Qos& qos, const EntityListener& listener);

    Partitioned() = default;

    dds_entity_t get() const { return m_endpoint.get(); }

private:
    Entity m_group;
    Entity m_endpoint; // goes first
};

} // namespace org::opensplice::DDS_RMI

#endif
