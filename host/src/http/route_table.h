// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_ROUTE_TABLE_H
#define ZORBD_ROUTE_TABLE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "http/http_message.h"
#include "http/response_stream.h"

namespace zorbd {

/// The request's body is JSON-RPC.
struct TakesCalls
{
};

/// Makes an answer at once: it runs on an I/O thread, so it must not wait. A HEAD request gets it without its
/// body.
using MakeAnswer = std::function<HttpResponse(const RequestHead& head)>;

/// Why a request is not answered.
struct Refusal
{
    unsigned status;
    std::string cause;
    /// With status 405, what the path takes.
    std::string allowed_methods{};
};

using OpenedStream = std::variant<std::unique_ptr<ResponseStream>, Refusal>;

/// Answers with a stream.
struct OpenStream
{
    const char* content_type;
    /// It runs on an I/O thread and must not wait. The stream calls `wake`, on any thread, when it was asked
    /// to; also after its end that does no harm.
    std::function<OpenedStream(const RequestHead& head, std::function<void()> wake)> open;
};

struct Route
{
    std::string method; ///< GET stands for HEAD, too
    std::string path;
    std::variant<TakesCalls, MakeAnswer, OpenStream> action;
    /// Nothing secret: needs no token, and may be asked for by a link on any page.
    bool is_public = false;
};

/// What is served where.
class RouteTable
{
public:
    void add(Route route) { m_routes.push_back(std::move(route)); }

    /// Null when there is none.
    const Route* find(std::string_view method, std::string_view path) const;
    /// The methods that a path takes, as the Allow header has them; empty when nothing is there.
    std::string methods_of(std::string_view path) const;

private:
    std::vector<Route> m_routes;
};

} // namespace zorbd

#endif
