// SPDX-License-Identifier: Apache-2.0
#include "http_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "child_process.h"

namespace host_test {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_in loopback(std::uint16_t port, const std::string& host)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, host.c_str(), &address.sin_addr);
    return address;
}

template <class Address>
zorbd::FileDescriptor connect_to(const Address& address, int family, const std::string& from = {})
{
    zorbd::FileDescriptor opened(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!from.empty()) {
        const sockaddr_in source = loopback(0, from);
        if (bind(opened.get(), reinterpret_cast<const sockaddr*>(&source), sizeof source) != 0)
            fail("cannot bind");
    }
    if (connect(opened.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        fail("cannot connect");
    return opened;
}

zorbd::FileDescriptor connect_to(std::uint16_t port, const std::string& from = {})
{
    return connect_to(loopback(port, "127.0.0.1"), AF_INET, from);
}

zorbd::FileDescriptor connect_to(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return connect_to(address, AF_UNIX);
}

bool has_input(int socket, std::chrono::milliseconds deadline)
{
    pollfd polled{socket, POLLIN, 0};
    return poll(&polled, 1, static_cast<int>(deadline.count())) > 0;
}

std::string in_lower_case(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::size_t content_length(const std::string& head)
{
    const std::string name = "\r\ncontent-length: ";
    const std::size_t found = head.find(name);
    return found == std::string::npos ? 0 : std::stoul(head.substr(found + name.size()));
}

} // namespace

HttpConnection::HttpConnection(std::uint16_t port, const std::string& from) : m_socket(connect_to(port, from))
{
}

HttpConnection::HttpConnection(std::uint16_t port) : m_socket(connect_to(port)) {}

HttpConnection::HttpConnection(const std::string& path) : m_socket(connect_to(path)) {}

void HttpConnection::reset()
{
    const linger discard{1, 0};
    setsockopt(m_socket.get(), SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
    m_socket.reset();
}

void HttpConnection::send(const std::string& bytes) const
{
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t now = ::send(m_socket.get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (now < 0)
            fail("cannot send");
        sent += static_cast<std::size_t>(now);
    }
}

void HttpConnection::end_sending() const
{
    shutdown(m_socket.get(), SHUT_WR);
}

std::string HttpConnection::receive_all()
{
    wait_closed();
    return std::exchange(m_received, {});
}

HttpResponse HttpConnection::receive()
{
    std::size_t head_end = 0;
    while ((head_end = m_received.find("\r\n\r\n")) == std::string::npos)
        receive_more();
    HttpResponse response;
    response.head = in_lower_case(m_received.substr(0, head_end + 2));
    response.status = std::stoi(response.head.substr(response.head.find(' ')));
    const std::size_t end = head_end + 4 + content_length(response.head);
    while (m_received.size() < end)
        receive_more();
    response.body = m_received.substr(head_end + 4, end - head_end - 4);
    m_received.erase(0, end);
    return response;
}

std::string HttpConnection::receive_until(const std::string& end)
{
    std::size_t found = 0;
    while ((found = m_received.find(end)) == std::string::npos)
        receive_more();
    const std::string text = m_received.substr(0, found + end.size());
    m_received.erase(0, text.size());
    return text;
}

void HttpConnection::wait_closed()
{
    try {
        while (true)
            receive_more();
    } catch (const std::runtime_error&) {
        if (!m_ended)
            throw;
    }
}

void HttpConnection::wait_cut_unread() const
{
    pollfd polled{m_socket.get(), POLLRDHUP, 0};
    const auto deadline = std::chrono::milliseconds(test_support::event_deadline);
    if (poll(&polled, 1, static_cast<int>(deadline.count())) != 1)
        throw std::runtime_error("the connection was not closed in time");
}

bool HttpConnection::is_quiet(std::chrono::milliseconds duration) const
{
    return m_received.empty() && !has_input(m_socket.get(), duration);
}

void HttpConnection::receive_more()
{
    std::array<char, 4096> buffer{};
    if (!has_input(m_socket.get(), test_support::event_deadline))
        throw std::runtime_error("nothing came in time");
    const ssize_t length = recv(m_socket.get(), buffer.data(), buffer.size(), 0);
    m_ended = length == 0 || (length < 0 && errno == ECONNRESET);
    if (m_ended)
        throw std::runtime_error("the server closed the connection");
    if (length < 0)
        fail("cannot receive");
    m_received.append(buffer.data(), static_cast<std::size_t>(length));
}

std::string post(const std::string& body, const std::string& headers, const std::string& path)
{
    return "POST " + path + " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n" + headers + "\r\n" + body;
}

std::string get(const std::string& path, const std::string& headers)
{
    return "GET " + path + " HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

} // namespace host_test
