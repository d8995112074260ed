// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_SERVICE_MANAGER_H
#define ZORBD_SERVICE_MANAGER_H

#include <string>

namespace zorbd {

/// Tells the service manager that started this process about its state, such as "READY=1": one datagram to
/// the socket that NOTIFY_SOCKET names. Does nothing where there is none; a failure is logged.
void notify_service_manager(const std::string& state);

} // namespace zorbd

#endif
