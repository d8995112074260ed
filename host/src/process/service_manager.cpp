// SPDX-License-Identifier: Apache-2.0
#include "process/service_manager.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <system_error>

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

/// Where the sockets begin that a service manager hands over.
constexpr int first_inherited = 3;

/// The value of a variable, if it is meant for this process: PID_VARIABLE names it, or is not there.
std::optional<unsigned long> number_for_us(const char* variable, const char* pid_variable)
{
    const char* text = std::getenv(variable);
    const char* pid = std::getenv(pid_variable);
    if (text == nullptr || (pid != nullptr && std::strtol(pid, nullptr, 10) != getpid()))
        return std::nullopt;
    char* end = nullptr;
    const unsigned long number = std::strtoul(text, &end, 10);
    if (end == text || *end != '\0' || number == 0)
        return std::nullopt;
    return number;
}

std::optional<unsigned long> inherited_count()
{
    return std::getenv("LISTEN_PID") == nullptr ? std::nullopt : number_for_us("LISTEN_FDS", "LISTEN_PID");
}

void make_own(int socket)
{
    const int flags = fcntl(socket, F_GETFL);
    if (flags < 0 || fcntl(socket, F_SETFL, flags | O_NONBLOCK) != 0 ||
        fcntl(socket, F_SETFD, FD_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot use a socket of the service manager");
}

} // namespace

void notify_reload()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const long long micros = now.tv_sec * 1000000LL + now.tv_nsec / 1000;
    notify_service_manager("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(micros));
}

std::optional<std::chrono::microseconds> watchdog_interval()
{
    const auto micros = number_for_us("WATCHDOG_USEC", "WATCHDOG_PID");
    if (!micros)
        return std::nullopt;
    return std::chrono::microseconds(*micros / 2);
}

bool has_inherited_sockets()
{
    return inherited_count().has_value();
}

std::vector<FileDescriptor> take_inherited_sockets()
{
    std::vector<FileDescriptor> sockets;
    const int count = static_cast<int>(inherited_count().value_or(0));
    for (int i = 0; i < count; ++i) {
        sockets.emplace_back(first_inherited + i);
        make_own(first_inherited + i);
    }
    for (const char* variable : {"LISTEN_FDS", "LISTEN_PID", "LISTEN_FDNAMES"})
        unsetenv(variable);
    return sockets;
}

void notify_service_manager(const std::string& state)
{
    const char* name = std::getenv("NOTIFY_SOCKET");
    if (name != nullptr && !send_to(name, state))
        log_message(std::string("cannot notify the service manager at ") + name + ": " +
                    std::strerror(errno));
}

} // namespace zorbd
