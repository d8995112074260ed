// SPDX-License-Identifier: Apache-2.0
#include "http/listen_socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zorbd {
namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

void check(int result, const std::string& what)
{
    if (result < 0)
        fail(what);
}

FileDescriptor open_socket(int family, const std::string& what)
{
    FileDescriptor opened(socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    check(opened.get(), what);
    return opened;
}

void listen_on(const FileDescriptor& socket, const std::string& what)
{
    check(listen(socket.get(), SOMAXCONN), what);
}

/// A socket address of any of the families used here.
struct SocketAddress
{
    sockaddr_storage storage{};
    socklen_t length = 0;

    sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

bool is_ipv6(const TcpAddress& address)
{
    return address.host.find(':') != std::string::npos;
}

SocketAddress socket_address(const TcpAddress& address)
{
    SocketAddress made;
    int read = 0;
    if (is_ipv6(address)) {
        auto* in6 = reinterpret_cast<sockaddr_in6*>(&made.storage);
        in6->sin6_family = AF_INET6;
        in6->sin6_port = htons(address.port);
        made.length = sizeof *in6;
        read = inet_pton(AF_INET6, address.host.c_str(), &in6->sin6_addr);
    } else {
        auto* in = reinterpret_cast<sockaddr_in*>(&made.storage);
        in->sin_family = AF_INET;
        in->sin_port = htons(address.port);
        made.length = sizeof *in;
        read = inet_pton(AF_INET, address.host.c_str(), &in->sin_addr);
    }
    if (read != 1)
        throw std::invalid_argument("'" + address.host + "' is no IPv4 or IPv6 address in numbers");
    return made;
}

SocketAddress socket_address(const std::string& path)
{
    SocketAddress made;
    auto* un = reinterpret_cast<sockaddr_un*>(&made.storage);
    if (path.size() >= sizeof un->sun_path) {
        errno = ENAMETOOLONG;
        fail("cannot listen on " + path);
    }
    un->sun_family = AF_UNIX;
    std::memcpy(un->sun_path, path.c_str(), path.size() + 1);
    made.length = sizeof *un;
    return made;
}

std::uint16_t parse_port(const std::string& text)
{
    std::uint16_t port = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, port);
    if (text.empty() || read.ec != std::errc() || read.ptr != end)
        throw std::invalid_argument("'" + text + "' is no port (0 to 65535)");
    return port;
}

std::string without_brackets(const std::string& host)
{
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        return host.substr(1, host.size() - 2);
    if (host.find(':') != std::string::npos)
        throw std::invalid_argument("an IPv6 address must stand in brackets, as in [::1]:8080");
    return host;
}

FileDescriptor listen_tcp(const TcpAddress& address)
{
    const std::string what = "cannot listen on " + to_text(address);
    const SocketAddress where = socket_address(address);
    FileDescriptor socket = open_socket(where.get()->sa_family, what);
    const int on = 1;
    check(setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on), what);
    check(bind(socket.get(), where.get(), where.length), what);
    listen_on(socket, what);
    return socket;
}

std::optional<struct stat> status_of(const std::string& path)
{
    struct stat status
    {
    };
    if (lstat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

/// Device and inode of the file at the path; nothing when there is none.
std::optional<std::pair<dev_t, ino_t>> identity_of(const std::string& path)
{
    const auto status = status_of(path);
    if (!status)
        return std::nullopt;
    return std::pair(status->st_dev, status->st_ino);
}

/// Which process has locked the file, as it has written there.
std::string holder_of(const FileDescriptor& lock)
{
    std::array<char, 32> text{};
    const ssize_t size = pread(lock.get(), text.data(), text.size(), 0);
    const std::string written(text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    const std::string process = written.substr(0, written.find_first_not_of("0123456789"));
    return process.empty() ? "another process" : "process " + process;
}

/// Of several processes that start at once one gets the lock, for as long as it lives.
FileDescriptor lock_path(const std::string& path, const std::string& what)
{
    const std::string file = path + ".lock";
    FileDescriptor lock(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    check(lock.get(), what + ": cannot open its lock file " + file);
    if (flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error(what + ": " + holder_of(lock) + " serves on it");
    const std::string process = std::to_string(getpid()) + '\n';
    check(ftruncate(lock.get(), 0), what + ": cannot write its lock file " + file);
    check(static_cast<int>(pwrite(lock.get(), process.data(), process.size(), 0)),
          what + ": cannot write its lock file " + file);
    return lock;
}

/// Removes a socket that nobody listens on any more.
void remove_stale_socket(const std::string& path, const SocketAddress& address)
{
    const auto status = status_of(path);
    if (!status || !S_ISSOCK(status->st_mode))
        return;
    const FileDescriptor probe = open_socket(AF_UNIX, path);
    if (connect(probe.get(), address.get(), address.length) != 0 && errno == ECONNREFUSED)
        unlink(path.c_str());
}

void restrict_access(const std::string& path, const UnixSocketAccess& access, const std::string& what)
{
    if (access.group)
        check(chown(path.c_str(), static_cast<uid_t>(-1), *access.group), what + ": cannot set its group");
    check(chmod(path.c_str(), access.mode), what + ": cannot set its mode");
}

} // namespace

TcpAddress parse_tcp_address(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        throw std::invalid_argument("'" + text + "' is not of the form ADDRESS:PORT");
    TcpAddress address{without_brackets(text.substr(0, colon)), parse_port(text.substr(colon + 1))};
    socket_address(address);
    return address;
}

std::string to_text(const TcpAddress& address)
{
    const std::string host = is_ipv6(address) ? '[' + address.host + ']' : address.host;
    return host + ':' + std::to_string(address.port);
}

bool is_loopback(const TcpAddress& address)
{
    const SocketAddress where = socket_address(address);
    if (where.storage.ss_family == AF_INET6)
        return IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6*>(&where.storage)->sin6_addr) != 0;
    return (ntohl(reinterpret_cast<const sockaddr_in*>(&where.storage)->sin_addr.s_addr) >> 24) ==
           IN_LOOPBACKNET;
}

std::optional<TcpAddress> address_of(int socket)
{
    SocketAddress bound;
    bound.length = sizeof bound.storage;
    check(getsockname(socket, bound.get(), &bound.length), "cannot tell what a socket listens on");
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (bound.storage.ss_family == AF_INET) {
        const auto& in = *reinterpret_cast<const sockaddr_in*>(&bound.storage);
        inet_ntop(AF_INET, &in.sin_addr, text.data(), text.size());
        return TcpAddress{text.data(), ntohs(in.sin_port)};
    }
    if (bound.storage.ss_family == AF_INET6) {
        const auto& in6 = *reinterpret_cast<const sockaddr_in6*>(&bound.storage);
        inet_ntop(AF_INET6, &in6.sin6_addr, text.data(), text.size());
        return TcpAddress{text.data(), ntohs(in6.sin6_port)};
    }
    return std::nullopt;
}

std::string path_of(int socket)
{
    SocketAddress bound;
    bound.length = sizeof bound.storage;
    check(getsockname(socket, bound.get(), &bound.length), "cannot tell what a socket listens on");
    return reinterpret_cast<const sockaddr_un*>(&bound.storage)->sun_path;
}

TcpListener::TcpListener(const TcpAddress& address) : m_address(address), m_socket(listen_tcp(address))
{
    m_address.port = address_of(m_socket.get())->port;
}

UnixListener::UnixListener(std::string path, const UnixSocketAccess& access)
    : m_path(std::move(path)), m_socket(open_socket(AF_UNIX, m_path))
{
    const std::string what = "cannot listen on " + m_path;
    const SocketAddress where = socket_address(m_path);
    m_lock = lock_path(m_path, what);
    remove_stale_socket(m_path, where);
    check(bind(m_socket.get(), where.get(), where.length), what);
    m_identity = identity_of(m_path);
    try {
        // Connections are refused until listen(), so nobody gets in before this.
        restrict_access(m_path, access, what);
        listen_on(m_socket, what);
    } catch (...) {
        unlink(m_path.c_str());
        throw;
    }
}

UnixListener::~UnixListener()
{
    if (m_identity && identity_of(m_path) == m_identity)
        unlink(m_path.c_str());
}

} // namespace zorbd
