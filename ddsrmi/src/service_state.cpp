// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/service_state.h"

#include "runtime_core.h"

namespace org::opensplice::DDS_RMI {

std::vector<ServiceState> service_states()
{
    return RuntimeCore::service_states();
}

} // namespace org::opensplice::DDS_RMI
