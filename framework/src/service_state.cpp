// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/mdw/service_state.h"

#include <ddsrmi.h>

// The embedded RMI layer's; others need not have it.
#if __has_include(<ddsrmi/service_state.h>)
#include <ddsrmi/service_state.h>
#define RMI_LAYER_TELLS_SERVICE_STATES
#endif

namespace zeb {
namespace api {
namespace mdw {

std::vector<ServiceState> serviceStates()
{
    std::vector<ServiceState> states;
#ifdef RMI_LAYER_TELLS_SERVICE_STATES
    for (const auto& state : org::opensplice::DDS_RMI::service_states())
        states.push_back({state.service, state.reachable});
#endif
    return states;
}

} // namespace mdw
} // namespace api
} // namespace zeb
