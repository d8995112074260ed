// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PEER_TEXT_H
#define ZORBD_PEER_TEXT_H

#include <string>

namespace zorbd {

/// The address of the client of a connected socket, as ADDRESS:PORT; "unix" for one that came over a Unix
/// socket.
std::string peer_text(int socket);

} // namespace zorbd

#endif
