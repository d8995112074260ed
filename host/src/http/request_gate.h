// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_REQUEST_GATE_H
#define ZORBD_REQUEST_GATE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "http/bearer_token.h"

namespace zorbd {

/// What the head of an HTTP request says, as far as it matters here.
struct RequestHead
{
    std::string_view method;
    std::string_view path;
    std::optional<std::string_view> content_type;
    std::optional<std::string_view> content_length;
    std::optional<std::string_view> origin;
    std::optional<std::string_view> authorization;
};

/// Where an admitted request goes.
enum class Route { json_rpc, health, events, metrics, console };

/// Why a request is not admitted.
struct Refusal
{
    unsigned int status;
    std::string cause;
    /// With status 405, what the path takes.
    const char* allowed_methods = nullptr;
};

/// Who belongs on one listener.
struct AccessRules
{
    /// When there is one, every request must show it.
    std::optional<BearerToken> token;
    /// The origins that the server's own pages would have; a request from a page of any other is refused.
    std::vector<std::string> own_origins;
    std::size_t max_body = 1U << 20U;
    bool has_console = false;
};

/// Decides on a request by its head, before its body is taken in.
class RequestGate
{
public:
    explicit RequestGate(AccessRules rules);

    std::variant<Route, Refusal> check(const RequestHead& head) const;
    std::size_t max_body() const { return m_rules.max_body; }
    Refusal body_too_large() const;

private:
    std::optional<Refusal> check_sender(const RequestHead& head) const;
    std::variant<Route, Refusal> check_call(const RequestHead& head) const;
    bool is_own(std::string_view origin) const;

    AccessRules m_rules;
};

} // namespace zorbd

#endif
