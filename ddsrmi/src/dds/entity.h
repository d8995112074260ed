// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_ENTITY_H
#define DDSRMI_DDS_ENTITY_H

#include <dds/dds.h>

#include <string>
#include <utility>

namespace org::opensplice::DDS_RMI {

/// Throws INTERNAL_ERROR, naming `what`, when a Cyclone call has failed.
dds_return_t check(dds_return_t result, const std::string& what);

/// Owns one Cyclone entity.
class Entity
{
public:
    Entity() noexcept = default;
    /// Takes what a dds_create_* call has returned; throws INTERNAL_ERROR, naming `what`, for an error code.
    Entity(dds_entity_t handle, const std::string& what) : m_handle(check(handle, what)) {}
    Entity(Entity&& other) noexcept : m_handle(std::exchange(other.m_handle, 0)) {}
    Entity& operator=(Entity&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Entity()
    {
        if (m_handle != 0)
            dds_delete(m_handle);
    }

    dds_entity_t get() const noexcept { return m_handle; }

private:
    dds_entity_t m_handle = 0;
};

} // namespace org::opensplice::DDS_RMI

#endif
