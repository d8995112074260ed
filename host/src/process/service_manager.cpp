// SPDX-License-Identifier: Apache-2.0
#include "process/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "system/file_descriptor.h"
#include "system/message_log.h"

namespace zorbd {
namespace {

/// Sends to a path, or to an abstract name, which is written with a leading @.
bool send_to(const std::string& name, const std::string& state)
{
    sockaddr_un address{};
    if (name.empty() || name.size() > sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.data(), name.size());
    if (name.front() == '@')
        address.sun_path[0] = '\0';
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    return sendto(socket.get(), state.data(), state.size(), MSG_NOSIGNAL,
                  reinterpret_cast<const sockaddr*>(&address), length) >= 0;
}

} // namespace

void notify_service_manager(const std::string& state)
{
    const char* name = std::getenv("NOTIFY_SOCKET");
    if (name != nullptr && !send_to(name, state))
        log_message(std::string("cannot notify the service manager at ") + name + ": " +
                    std::strerror(errno));
}

} // namespace zorbd
