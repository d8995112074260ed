// SPDX-License-Identifier: Apache-2.0
#include "http/console_page.h"

#include <microhttpd.h>

#include "http/mhd_response.h"

namespace zorbd {
namespace {

/// The page runs its own script and style only, talks to its own server only, and stands in no other page.
constexpr const char* content_security_policy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src data:; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

} // namespace

void answer_with_console(MHD_Connection& connection, const ConsoleFile& file)
{
    const Response response = response_of(file.text);
    MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CONTENT_TYPE, file.content_type);
    MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CACHE_CONTROL, "no-cache");
    MHD_add_response_header(response.get(), "Content-Security-Policy", content_security_policy);
    MHD_add_response_header(response.get(), "X-Content-Type-Options", "nosniff");
    MHD_add_response_header(response.get(), "Referrer-Policy", "no-referrer");
    queue_response(connection, MHD_HTTP_OK, response);
}

} // namespace zorbd
