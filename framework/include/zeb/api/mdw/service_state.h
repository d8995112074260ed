// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_MDW_SERVICE_STATE_H
#define ZEB_API_MDW_SERVICE_STATE_H

#include <string>
#include <vector>

namespace zeb {
namespace api {
namespace mdw {

/// What is known of a remote service that a plug-in has found.
struct ServiceState
{
    std::string name; ///< of the service
    /// Whether its server is there and was heard of within the last lease of Cyclone DDS (10 s as it comes).
    bool reachable;
};

/// One for each service that is in use in this process, once for each of its users. Empty on an RMI layer
/// that does not tell. Any thread may call it.
std::vector<ServiceState> serviceStates();

} // namespace mdw
} // namespace api
} // namespace zeb

#endif
