// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_LISTEN_SOCKET_H
#define ZORBD_LISTEN_SOCKET_H

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "system/file_descriptor.h"

namespace zorbd {

/// A TCP address in numbers.
struct TcpAddress
{
    std::string host; ///< "127.0.0.1", "::1"
    std::uint16_t port = 0;
};

/// Reads ADDRESS:PORT, or [ADDRESS]:PORT for IPv6. Throws std::invalid_argument that says what is wrong.
TcpAddress parse_tcp_address(const std::string& text);

/// ADDRESS:PORT, with brackets around an IPv6 address.
std::string to_text(const TcpAddress& address);

bool is_loopback(const TcpAddress& address);

/// What a listening socket is bound to; nothing for a Unix socket. Throws std::system_error.
std::optional<TcpAddress> address_of(int socket);
/// The path of a Unix socket.
std::string path_of(int socket);

/// A socket that listens on TCP.
class TcpListener
{
public:
    /// Port 0 takes a free one. Throws std::system_error that names the address.
    explicit TcpListener(const TcpAddress& address);

    int fd() const { return m_socket.get(); }
    /// With the port that was really taken.
    const TcpAddress& address() const { return m_address; }

private:
    TcpAddress m_address;
    FileDescriptor m_socket;
};

/// Who may connect to a Unix socket.
struct UnixSocketAccess
{
    mode_t mode = 0660;
    std::optional<gid_t> group;
};

/// A socket that listens on a path. A lock file beside it, PATH.lock, which stays, tells whose it is.
class UnixListener
{
public:
    /// A socket that a dead process left at the path is replaced; anything else there is an error, also a
    /// socket that is still listened on. Nobody can connect before mode and group are set. Throws
    /// std::system_error, or std::runtime_error, that names the path.
    UnixListener(std::string path, const UnixSocketAccess& access);
    /// Removes the path, if it still is this socket's.
    ~UnixListener();
    UnixListener(const UnixListener&) = delete;
    UnixListener& operator=(const UnixListener&) = delete;

    int fd() const { return m_socket.get(); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
    FileDescriptor m_lock;
    FileDescriptor m_socket;
    std::optional<std::pair<dev_t, ino_t>> m_identity; ///< of the file at the path
};

} // namespace zorbd

#endif
