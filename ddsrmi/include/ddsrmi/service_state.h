// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVICE_STATE_H
#define DDSRMI_SERVICE_STATE_H

#include <string>
#include <vector>

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// What is known of the server behind a proxy.
struct ServiceState
{
    std::string service; ///< its name
    /// Whether calls are accepted now: a server is there and was heard of within the last lease.
    bool reachable;
};

/// One for each proxy that this process holds, in the order in which they were found. Any thread may call it.
std::vector<ServiceState> service_states();

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
