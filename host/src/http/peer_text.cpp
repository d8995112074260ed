// SPDX-License-Identifier: Apache-2.0
#include "http/peer_text.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>

namespace zorbd {

std::string peer_text(int socket)
{
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    const auto* address = reinterpret_cast<sockaddr*>(&storage);
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&storage), &length) != 0)
        return "unknown"; // it has gone already
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (address->sa_family == AF_INET) {
        const auto& in = *reinterpret_cast<const sockaddr_in*>(address);
        inet_ntop(AF_INET, &in.sin_addr, text.data(), text.size());
        return text.data() + (':' + std::to_string(ntohs(in.sin_port)));
    }
    if (address->sa_family == AF_INET6) {
        const auto& in6 = *reinterpret_cast<const sockaddr_in6*>(address);
        inet_ntop(AF_INET6, &in6.sin6_addr, text.data(), text.size());
        return std::string("[").append(text.data()).append("]:").append(std::to_string(ntohs(in6.sin6_port)));
    }
    return "unix";
}

} // namespace zorbd
