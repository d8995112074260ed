// SPDX-License-Identifier: Apache-2.0
// Bytes on a connection: whatever comes, what goes back is nothing or HTTP, and the next connection is
// served.
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "http/acceptor.h"
#include "http/http_server.h"
#include "method_table.h"
#include "system/file_descriptor.h"
#include "temporary_folder.h"

namespace {

constexpr std::chrono::milliseconds request_time{500};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

sockaddr_un address_of(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

zorbd::FileDescriptor listen_on(const sockaddr_un& address)
{
    zorbd::FileDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    require(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
    require(listen(listener.get(), SOMAXCONN) == 0);
    return listener;
}

/// The whole way from a socket to a method.
class Server
{
public:
    zorbd::FileDescriptor connect() const
    {
        zorbd::FileDescriptor client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        require(::connect(client.get(), reinterpret_cast<const sockaddr*>(&m_address), sizeof m_address) ==
                0);
        return client;
    }

private:
    zorbd::Listener listener()
    {
        return {m_listener.get(),
                true,
                true,
                [](zorbd::FileDescriptor socket) {
                    return std::make_unique<zorbd::PlainTransport>(std::move(socket));
                },
                {&m_server}};
    }

    std::shared_ptr<const zorbd::TokenStore> make_tokens() const
    {
        const auto file = m_folder.write("token", "a-token-of-some-length");
        std::filesystem::permissions(file, std::filesystem::perms::owner_read);
        return std::make_shared<const zorbd::TokenStore>(file);
    }

    static zorbd::RouteTable make_routes()
    {
        zorbd::RouteTable routes;
        routes.add({"POST", "/", zorbd::TakesCalls()});
        routes.add({"GET", "/healthz", [](const zorbd::RequestHead&) {
                        return zorbd::HttpResponse{200, "{}"};
                    }});
        return routes;
    }

    test_support::TemporaryFolder m_folder;
    const sockaddr_un m_address = address_of(m_folder.path() / "socket");
    const zorbd::FileDescriptor m_listener = listen_on(m_address);
    const host_test::FuzzMethods m_methods;
    const zorbd::Dispatcher m_dispatcher{m_methods, {16, 20}};
    zorbd::WorkerPool m_workers{1, 2, 16};
    zorbd::PluginLoads m_loads{{"stub.so"}, 1, 16};
    zorbd::ConnectionRegistry m_connections{
        {16, 16, 16, request_time, request_time, request_time, request_time, request_time}};
    const zorbd::RouteTable m_routes = make_routes();
    const zorbd::RequestGate m_gate{m_routes,
                                    {make_tokens(), zorbd::TcpAddress{"127.0.0.1", 8080}, {"device"}, 4096}};
    zorbd::EventFeed m_feed{{}};
    zorbd::Metrics m_metrics;
    zorbd::CallLog m_calls{m_metrics, m_feed, nullptr};
    zorbd::HttpServer m_server{m_gate,
                               {{m_dispatcher, m_workers, m_loads, m_calls}, m_metrics, request_time}};
    zorbd::Acceptor m_acceptor{{listener()}, m_connections, m_metrics};
};

void send_all(const zorbd::FileDescriptor& client, const std::uint8_t* data, std::size_t size)
{
    while (size != 0) {
        const ssize_t sent = send(client.get(), data, size, MSG_NOSIGNAL);
        if (sent <= 0)
            return; // the server has closed the connection already
        data += sent;
        size -= static_cast<std::size_t>(sent);
    }
}

std::string receive_all(const zorbd::FileDescriptor& client)
{
    std::string received;
    std::array<char, 4096> buffer{};
    ssize_t length = 0;
    while ((length = recv(client.get(), buffer.data(), buffer.size(), 0)) > 0)
        received.append(buffer.data(), static_cast<std::size_t>(length));
    return received;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Server server;
    if (size > 16384)
        return 0; // more would wait in the socket for a server that answers before it reads on
    const zorbd::FileDescriptor client = server.connect();
    send_all(client, data, size);
    shutdown(client.get(), SHUT_WR);
    const std::string received = receive_all(client);
    require(received.empty() || received.compare(0, 9, "HTTP/1.1 ") == 0);
    return 0;
}
