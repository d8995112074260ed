// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PEER_TEXT_H
#define ZORBD_PEER_TEXT_H

#include <string>

struct MHD_Connection;

namespace zorbd {

/// The address of the client, as ADDRESS:PORT; "unix" for one that came over a Unix socket.
std::string peer_text(MHD_Connection& connection);

} // namespace zorbd

#endif
