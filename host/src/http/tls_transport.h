// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TLS_TRANSPORT_H
#define ZORBD_TLS_TRANSPORT_H

#include <memory>
#include <string>

#include "http/transport.h"
#include "system/file_descriptor.h"

struct ssl_ctx_st;
struct ssl_st;

namespace zorbd {

/// The bytes of a connection inside TLS. receive() goes on with the handshake until that is over.
class TlsTransport : public Transport
{
public:
    /// Throws std::bad_alloc.
    TlsTransport(FileDescriptor socket, ssl_ctx_st& context);
    ~TlsTransport() override;

    int socket() const override { return m_socket.get(); }
    ssize_t receive(char* buffer, std::size_t size) override;
    ssize_t send(std::string_view first, std::string_view second) override;
    void end_sending() override;
    /// A record may have come in whole and have been read in part.
    bool drains_by_short_read() const override { return false; }
    bool receive_waits_for_room() const override { return m_receive_waits_for_room; }

private:
    struct Release
    {
        void operator()(ssl_st* session) const noexcept;
    };

    ssize_t result_of(int done, bool& waits_for_room);

    const FileDescriptor m_socket;
    std::unique_ptr<ssl_st, Release> m_session;
    std::string m_joined; ///< two texts that go out as one record
    bool m_is_broken = false;
    bool m_receive_waits_for_room = false;
};

} // namespace zorbd

#endif
