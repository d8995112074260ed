// SPDX-License-Identifier: Apache-2.0
#include "dds/entity_listener.h"

#include <new>
#include <utility>

#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

// Nothing may leave a callback of Cyclone's.
template <class Action, class... Arguments>
void run(const Action& action, Arguments... arguments)
{
    try {
        action(arguments...);
    } catch (...) {
        report_current_exception("taking in what DDS has brought");
    }
}

const EntityListener::Actions& actions_of(void* argument)
{
    return *static_cast<const EntityListener::Actions*>(argument);
}

} // namespace

EntityListener::EntityListener(Actions actions)
    : m_actions(std::move(actions)), m_listener(dds_create_listener(const_cast<Actions*>(&m_actions)))
{
    if (m_listener == nullptr)
        throw std::bad_alloc();
    dds_listener_t* const listener = m_listener.get();
    if (m_actions.on_data)
        dds_lset_data_available(listener,
                                [](dds_entity_t, void* argument) { run(actions_of(argument).on_data); });
    if (!m_actions.on_match)
        return;
    dds_lset_publication_matched(listener,
                                 [](dds_entity_t, dds_publication_matched_status_t status, void* argument) {
                                     run(actions_of(argument).on_match, status.last_subscription_handle);
                                 });
    dds_lset_subscription_matched(listener,
                                  [](dds_entity_t, dds_subscription_matched_status_t status, void* argument) {
                                      run(actions_of(argument).on_match, status.last_publication_handle);
                                  });
}

} // namespace org::opensplice::DDS_RMI
