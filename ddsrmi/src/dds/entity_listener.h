// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_ENTITY_LISTENER_H
#define DDSRMI_DDS_ENTITY_LISTENER_H

#include <dds/dds.h>

#include <functional>
#include <memory>

namespace org::opensplice::DDS_RMI {

/// Calls our code on Cyclone's threads when something happens to the entity that was created with it. It must
/// outlive the entity. Its actions return soon, wait for nothing and run nobody else's code; what they throw
/// is reported.
class EntityListener
{
public:
    struct Actions
    {
        std::function<void()> on_data; ///< a reader may have samples
        /// The reader or writer of that handle was matched, or is not any more.
        std::function<void(dds_instance_handle_t)> on_match;
    };

    explicit EntityListener(Actions actions);
    EntityListener(const EntityListener&) = delete;
    EntityListener& operator=(const EntityListener&) = delete;

    const dds_listener_t* get() const { return m_listener.get(); }

private:
    struct Deleter
    {
        void operator()(dds_listener_t* listener) const noexcept { dds_delete_listener(listener); }
    };

    const Actions m_actions;
    const std::unique_ptr<dds_listener_t, Deleter> m_listener;
};

} // namespace org::opensplice::DDS_RMI

#endif
