// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_HTTP_CLIENT_H
#define TESTS_HOST_HTTP_CLIENT_H

#include <chrono>
#include <cstdint>
#include <string>

#include "system/file_descriptor.h"

namespace host_test {

struct HttpResponse
{
    int status = 0;
    std::string head; ///< with the first line, in lower case
    std::string body;
};

/// One connection, on which a test sends just the bytes that it wants to. What does not happen within the
/// tests' deadline is a std::runtime_error.
class HttpConnection
{
public:
    /// Connects to a port of 127.0.0.1, or to a Unix socket.
    explicit HttpConnection(std::uint16_t port);
    explicit HttpConnection(const std::string& path);
    /// Connects to a port of 127.0.0.1 from another loopback address.
    HttpConnection(std::uint16_t port, const std::string& from);

    void send(const std::string& bytes) const;
    /// Tells the server that nothing more will be sent.
    void end_sending() const;
    HttpResponse receive();
    /// Everything until the server closes the connection.
    std::string receive_all();
    /// Everything that comes up to `end`, with it.
    std::string receive_until(const std::string& end);
    /// Waits for the server to close the connection.
    void wait_closed();
    /// Waits for the same without taking anything in.
    void wait_cut_unread() const;
    /// Breaks the connection off, without the usual goodbye.
    void reset();
    /// Whether nothing comes, not even the end, for that long.
    bool is_quiet(std::chrono::milliseconds duration) const;

private:
    void receive_more();

    zorbd::FileDescriptor m_socket;
    std::string m_received;
    bool m_ended = false;
};

/// A request with a body, with Host and Content-Length, and with more header lines ("Name: value\r\n").
std::string post(const std::string& body, const std::string& headers = "Content-Type: application/json\r\n",
                 const std::string& path = "/");
std::string get(const std::string& path, const std::string& headers = "");

/// Sends one request on a connection of its own.
template <class Where>
HttpResponse ask(const Where& where, const std::string& request)
{
    HttpConnection connection(where);
    connection.send(request);
    return connection.receive();
}

} // namespace host_test

#endif
