// SPDX-License-Identifier: Apache-2.0
#include "dds/arrival_flag.h"

#include <new>

namespace org::opensplice::DDS_RMI {

Listener ArrivalFlag::listener()
{
    Listener listener(dds_create_listener(this));
    if (listener == nullptr)
        throw std::bad_alloc();
    dds_lset_data_available(listener.get(),
                            [](dds_entity_t, void* flag) { static_cast<ArrivalFlag*>(flag)->raise(); });
    return listener;
}

void ArrivalFlag::raise()
{
    if (!m_raised.exchange(true))
        ++m_raised_flags;
}

void ArrivalFlag::lower()
{
    if (m_raised.exchange(false))
        --m_raised_flags;
}

} // namespace org::opensplice::DDS_RMI
