// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_REQUEST_GATE_H
#define ZORBD_REQUEST_GATE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "http/http_message.h"
#include "http/listen_socket.h"
#include "http/route_table.h"
#include "http/token_store.h"

namespace zorbd {

/// Who belongs on one listener.
struct AccessRules
{
    /// When there are some, every request must show one.
    std::shared_ptr<const TokenStore> tokens;
    /// Where it listens; none for a Unix socket, which no web page reaches.
    std::optional<TcpAddress> address;
    /// Names, besides localhost and the address, under which it is reached.
    std::vector<std::string> server_names;
    std::size_t max_body = 1U << 20U;
    /// Of the addresses of its own pages.
    std::string scheme = "http";
};

/// Where an admitted request goes, and whose it is.
struct Admission
{
    const Route* route = nullptr;
    std::shared_ptr<const Token> token; ///< null where none is asked for
};

/// Decides on a request by its head, before its body is taken in.
class RequestGate
{
public:
    /// `routes` must outlive it.
    RequestGate(const RouteTable& routes, AccessRules rules);

    std::variant<Admission, Refusal> check(const RequestHead& head) const;
    std::size_t max_body() const { return m_rules.max_body; }

    /// Replaces the names under which the server is reached. Any thread.
    void set_server_names(const std::vector<std::string>& names);

private:
    Refusal not_here(const RequestHead& head) const;
    std::optional<Refusal> check_name(const RequestHead& head) const;
    std::optional<Refusal> check_sender(const RequestHead& head) const;
    std::variant<std::shared_ptr<const Token>, Refusal> find_token(const RequestHead& head) const;
    std::optional<Refusal> check_call(const RequestHead& head) const;
    static std::optional<Refusal> check_page(const Route& route, const Token* token);
    bool is_own_name(std::string_view authority) const;
    bool is_server_name(std::string_view host) const;
    bool is_own_page(std::string_view origin, std::string_view authority) const;

    const RouteTable& m_routes;
    AccessRules m_rules;
    mutable std::shared_mutex m_mutex; ///< guards the names
};

} // namespace zorbd

#endif
