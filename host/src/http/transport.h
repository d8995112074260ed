// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TRANSPORT_H
#define ZORBD_TRANSPORT_H

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string_view>

#include "system/file_descriptor.h"

namespace zorbd {

/// The bytes of one connection, over a socket that does not block. One thread at a time uses it.
class Transport
{
public:
    virtual ~Transport() = default;

    virtual int socket() const = 0;
    /// As recv(): the number of bytes, 0 at the end, -1 with errno; EAGAIN when there is nothing now.
    virtual ssize_t receive(char* buffer, std::size_t size) = 0;
    /// As send(), of two texts one after the other: the number of bytes taken, -1 with errno; EAGAIN when
    /// none can be taken now.
    virtual ssize_t send(std::string_view first, std::string_view second) = 0;
    /// Tells the other end that nothing more will be sent.
    virtual void end_sending() = 0;
    /// Whether a receive() that gave less than there was room for has left nothing behind in the socket.
    virtual bool drains_by_short_read() const = 0;
    /// Whether the last receive() has given EAGAIN because something must be sent first, for which there is
    /// no room.
    virtual bool receive_waits_for_room() const { return false; }
};

/// Bytes as they are.
class PlainTransport : public Transport
{
public:
    explicit PlainTransport(FileDescriptor socket) : m_socket(std::move(socket)) {}

    int socket() const override { return m_socket.get(); }
    ssize_t receive(char* buffer, std::size_t size) override;
    ssize_t send(std::string_view first, std::string_view second) override;
    void end_sending() override;
    bool drains_by_short_read() const override { return true; }

private:
    const FileDescriptor m_socket;
};

/// Makes the transport of a connection that a listener has accepted. May throw.
using MakeTransport = std::function<std::unique_ptr<Transport>(FileDescriptor socket)>;

} // namespace zorbd

#endif
