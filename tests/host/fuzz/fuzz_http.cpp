// SPDX-License-Identifier: Apache-2.0
// Bytes on a connection: whatever comes, what goes back is nothing or HTTP, and the next connection is
// served.
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>

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
    static zorbd::AccessRules rules()
    {
        return {zorbd::BearerToken("a-token-of-some-length"), {"http://localhost:8080"}, 4096};
    }

    test_support::TemporaryFolder m_folder;
    const sockaddr_un m_address = address_of(m_folder.path() / "socket");
    const zorbd::FileDescriptor m_listener = listen_on(m_address);
    const host_test::FuzzMethods m_methods;
    const zorbd::Dispatcher m_dispatcher{m_methods, {16, 20}};
    zorbd::WorkerPool m_workers{1, 16};
    zorbd::ConnectionRegistry m_connections{{16, 16, request_time, request_time}};
    zorbd::EventFeed m_feed{{}};
    zorbd::Metrics m_metrics;
    zorbd::CallLog m_calls{m_metrics, m_feed, nullptr};
    zorbd::HttpServer m_server{m_listener.get(),
                               zorbd::RequestGate(rules()),
                               {m_dispatcher, m_workers, m_connections, m_feed, m_metrics, m_calls,
                                [] {
                                    return zorbd::HealthReport{true, "{}"};
                                },
                                [] { return std::string("# nothing\n"); }}};
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

/// libmicrohttpd overlooks the end of a stream that arrives together with its last bytes, and would wait for
/// more until the request's time is over; so the end is sent when the server has read them. Only the speed of
/// the fuzzing depends on this.
void wait_until_read(const zorbd::FileDescriptor& client)
{
    int unread = 1;
    for (int attempt = 0; attempt < 2000 && unread != 0; ++attempt) {
        std::this_thread::yield();
        require(ioctl(client.get(), SIOCOUTQ, &unread) == 0);
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
    wait_until_read(client);
    shutdown(client.get(), SHUT_WR);
    const std::string received = receive_all(client);
    require(received.empty() || received.compare(0, 9, "HTTP/1.1 ") == 0 ||
            received.compare(0, 9, "HTTP/1.0 ") == 0);
    return 0;
}
