// SPDX-License-Identifier: Apache-2.0
#include "http/transport.h"

#include <sys/socket.h>
#include <sys/uio.h>

namespace zorbd {
namespace {

iovec vector_of(std::string_view text)
{
    return {const_cast<char*>(text.data()), text.size()};
}

} // namespace

ssize_t PlainTransport::receive(char* buffer, std::size_t size)
{
    return recv(m_socket.get(), buffer, size, 0);
}

ssize_t PlainTransport::send(std::string_view first, std::string_view second)
{
    iovec parts[] = {vector_of(first), vector_of(second)};
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = 2;
    return sendmsg(m_socket.get(), &message, MSG_NOSIGNAL);
}

void PlainTransport::end_sending()
{
    shutdown(m_socket.get(), SHUT_WR);
}

} // namespace zorbd
