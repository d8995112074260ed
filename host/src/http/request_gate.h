// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_REQUEST_GATE_H
#define ZORBD_REQUEST_GATE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "http/bearer_token.h"
#include "http/http_message.h"
#include "http/listen_socket.h"
#include "http/route_table.h"

namespace zorbd {

/// Who belongs on one listener.
struct AccessRules
{
    /// When there is one, every request must show it.
    std::optional<BearerToken> token;
    /// Where it listens; none for a Unix socket, which no web page reaches.
    std::optional<TcpAddress> address;
    /// Names, besides localhost and the address, under which it is reached.
    std::vector<std::string> server_names;
    std::size_t max_body = 1U << 20U;
};

/// Decides on a request by its head, before its body is taken in.
class RequestGate
{
public:
    /// `routes` must outlive it.
    RequestGate(const RouteTable& routes, AccessRules rules);

    std::variant<const Route*, Refusal> check(const RequestHead& head) const;
    std::size_t max_body() const { return m_rules.max_body; }

private:
    Refusal not_here(const RequestHead& head) const;
    std::optional<Refusal> check_name(const RequestHead& head) const;
    std::optional<Refusal> check_sender(const RequestHead& head) const;
    std::optional<Refusal> check_call(const RequestHead& head) const;
    bool is_own_name(std::string_view authority) const;
    bool is_server_name(std::string_view host) const;
    bool is_own_page(std::string_view origin, std::string_view authority) const;

    const RouteTable& m_routes;
    const AccessRules m_rules;
};

} // namespace zorbd

#endif
