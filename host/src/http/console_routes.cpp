// SPDX-License-Identifier: Apache-2.0
#include "http/console_routes.h"

#include <string>

#include "console/console_files.h"

namespace zorbd {
namespace {

/// The page runs its own script and style only, talks to its own server only, and stands in no other page.
constexpr const char* fields =
    "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; img-src data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
    "Referrer-Policy: no-referrer\r\n";

} // namespace

void add_console_routes(RouteTable& routes)
{
    for (const ConsoleFile& file : console_files()) {
        const auto answer = [&file](const RequestHead&) {
            return HttpResponse{200, std::string(file.text), file.content_type, fields};
        };
        routes.add({"GET", std::string(file.path), answer, true});
    }
}

} // namespace zorbd
