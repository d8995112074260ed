// SPDX-License-Identifier: Apache-2.0

// The HTTP server of libjson-rpc-cpp with a method that does nothing. Its only argument is the number of
// threads. Until its standard input ends.

#include <jsonrpccpp/server.h>
#include <jsonrpccpp/server/connectors/httpserver.h>
#include <netinet/in.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <iostream>
#include <string>

namespace {

std::uint16_t bound_port(int socket)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

class Idler : public jsonrpc::AbstractServer<Idler>
{
public:
    explicit Idler(jsonrpc::AbstractServerConnector& connector) : AbstractServer(connector)
    {
        bindAndAddMethod(
            jsonrpc::Procedure("nothing", jsonrpc::PARAMS_BY_NAME, jsonrpc::JSON_INTEGER, nullptr),
            &Idler::nothing);
    }

private:
    void nothing(const Json::Value& /*parameters*/, Json::Value& result) { result = 0; }
};

} // namespace

/// Takes the place of the C library's: that server offers no way to listen on the loopback interface only,
/// nor to tell which port it was given.
extern "C" int bind(int socket, const sockaddr* address, socklen_t size) noexcept
{
    sockaddr_in loopback{};
    if (address->sa_family == AF_INET) {
        loopback = *reinterpret_cast<const sockaddr_in*>(address);
        loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address = reinterpret_cast<const sockaddr*>(&loopback);
    }
    const auto result = static_cast<int>(syscall(SYS_bind, socket, address, size));
    if (result == 0)
        std::cerr << "bound on http://127.0.0.1:" << bound_port(socket) << "/" << std::endl;
    return result;
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "Usage: bench_host_jsonrpccpp_server THREADS" << std::endl;
        return 2;
    }
    jsonrpc::HttpServer connector(0, "", "", std::stoi(argv[1]));
    Idler server(connector);
    if (!server.StartListening()) {
        std::cerr << "bench_host_jsonrpccpp_server: cannot start the HTTP server" << std::endl;
        return 1;
    }
    std::cerr << "ready" << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    server.StopListening();
}
