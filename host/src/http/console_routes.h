// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_CONSOLE_ROUTES_H
#define ZORBD_CONSOLE_ROUTES_H

#include "http/route_table.h"

namespace zorbd {

/// Serves the files of the console. Whoever asks gets them: the page itself asks for the token.
void add_console_routes(RouteTable& routes);

} // namespace zorbd

#endif
