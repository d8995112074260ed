// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_SERVICE_MANAGER_H
#define ZORBD_SERVICE_MANAGER_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "system/file_descriptor.h"

namespace zorbd {

/// Tells the service manager (systemd) of a change of state, if it has started this process and wants to
/// know: "READY=1", "STOPPING=1". A failure is written to the log and is no reason to stop.
void notify_service_manager(const std::string& state);

/// The same for a reload that begins; READY=1 tells that it has ended.
void notify_reload();

/// How often the service manager wants to hear WATCHDOG=1; nothing when it does not.
std::optional<std::chrono::microseconds> watchdog_interval();

/// Whether the service manager has handed listening sockets over.
bool has_inherited_sockets();

/// Those sockets, not blocking and not inherited any further. Throws std::system_error.
std::vector<FileDescriptor> take_inherited_sockets();

} // namespace zorbd

#endif
