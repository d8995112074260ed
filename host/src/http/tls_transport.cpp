// SPDX-License-Identifier: Apache-2.0
#include "http/tls_transport.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace zorbd {
namespace {

/// What one record takes.
constexpr std::size_t largest_record = 16384;

} // namespace

void TlsTransport::Release::operator()(ssl_st* session) const noexcept
{
    SSL_free(session);
}

TlsTransport::TlsTransport(FileDescriptor socket, ssl_ctx_st& context)
    : m_socket(std::move(socket)), m_session(SSL_new(&context))
{
    if (m_session == nullptr || SSL_set_fd(m_session.get(), m_socket.get()) != 1)
        throw std::bad_alloc();
    SSL_set_accept_state(m_session.get());
}

TlsTransport::~TlsTransport()
{
    if (!m_is_broken && SSL_is_init_finished(m_session.get()) == 1)
        SSL_shutdown(m_session.get()); // tells the client that nothing is missing; does not wait
    ERR_clear_error();
}

ssize_t TlsTransport::receive(char* buffer, std::size_t size)
{
    ERR_clear_error();
    std::size_t read = 0;
    const int done = SSL_read_ex(m_session.get(), buffer, size, &read);
    m_receive_waits_for_room = false;
    return done == 1 ? static_cast<ssize_t>(read) : result_of(done, m_receive_waits_for_room);
}

/// What is sent again after EAGAIN begins with what was to be sent before, as TLS wants it.
ssize_t TlsTransport::send(std::string_view first, std::string_view second)
{
    if (SSL_is_init_finished(m_session.get()) != 1) {
        errno = EAGAIN;
        return -1;
    }
    std::string_view text = first.empty() ? second : first;
    if (!first.empty() && !second.empty()) {
        m_joined.assign(first.substr(0, largest_record));
        m_joined += second.substr(0, largest_record - m_joined.size());
        text = m_joined;
    }
    if (text.empty())
        return 0;
    ERR_clear_error();
    std::size_t written = 0;
    bool waits_for_room = false;
    const int done =
        SSL_write_ex(m_session.get(), text.data(), std::min(text.size(), largest_record), &written);
    return done == 1 ? static_cast<ssize_t>(written) : result_of(done, waits_for_room);
}

void TlsTransport::end_sending()
{
    if (!m_is_broken && SSL_is_init_finished(m_session.get()) == 1)
        SSL_shutdown(m_session.get());
    ERR_clear_error();
    m_is_broken = true; // for sending
    shutdown(m_socket.get(), SHUT_WR);
}

/// What recv() and send() would give.
ssize_t TlsTransport::result_of(int done, bool& waits_for_room)
{
    switch (SSL_get_error(m_session.get(), done)) {
    case SSL_ERROR_WANT_WRITE:
        waits_for_room = true;
        [[fallthrough]];
    case SSL_ERROR_WANT_READ:
        errno = EAGAIN;
        return -1;
    case SSL_ERROR_ZERO_RETURN:
        return 0;
    default:
        m_is_broken = true;
        errno = EPROTO;
        return -1;
    }
}

} // namespace zorbd
