// SPDX-License-Identifier: Apache-2.0
#include "http/request_gate.h"

#include <arpa/inet.h>

#include <algorithm>
#include <ctime>
#include <mutex>
#include <utility>

namespace zorbd {
namespace {

constexpr std::string_view json_types[] = {"application/json", "application/json-rpc",
                                           "application/jsonrequest"};

/// A media type without its parameters.
std::string_view media_type(std::string_view content_type)
{
    const std::string_view type = content_type.substr(0, content_type.find(';'));
    return type.substr(0, type.find_last_not_of(" \t") + 1);
}

bool is_json(const std::optional<std::string_view>& content_type)
{
    return content_type &&
           std::any_of(std::begin(json_types), std::end(json_types), [&](std::string_view type) {
               return equal_ignoring_case(media_type(*content_type), type);
           });
}

/// The host of an authority, without its port and without an IPv6 address' brackets.
std::string_view host_of(std::string_view authority)
{
    if (!authority.empty() && authority.front() == '[')
        return authority.substr(1, std::min(authority.find(']'), authority.size()) - 1);
    return authority.substr(0, authority.find(':'));
}

/// What the client takes the server for.
std::string_view authority_of(const RequestHead& head)
{
    return head.authority.empty() ? head.field("Host").value_or("") : std::string_view(head.authority);
}

bool is_address(std::string_view host)
{
    const std::string text(host);
    in6_addr parsed{};
    return inet_pton(AF_INET, text.c_str(), &parsed) == 1 || inet_pton(AF_INET6, text.c_str(), &parsed) == 1;
}

bool is_any(const TcpAddress& address)
{
    return address.host == "0.0.0.0" || address.host == "::";
}

} // namespace

RequestGate::RequestGate(const RouteTable& routes, AccessRules rules)
    : m_routes(routes), m_rules(std::move(rules))
{
}

std::variant<Admission, Refusal> RequestGate::check(const RequestHead& head) const
{
    const std::shared_lock<std::shared_mutex> lock(m_mutex);
    if (auto refusal = check_name(head))
        return std::move(*refusal);
    const Route* route = m_routes.find(head.method, head.path);
    if (route != nullptr && route->is_public)
        return Admission{route, nullptr};
    if (auto refusal = check_sender(head))
        return std::move(*refusal);
    auto token = find_token(head);
    if (auto* refusal = std::get_if<Refusal>(&token))
        return std::move(*refusal);
    if (route == nullptr)
        return not_here(head);
    Admission admission{route, std::get<std::shared_ptr<const Token>>(std::move(token))};
    if (auto refusal = std::holds_alternative<TakesCalls>(route->action)
                           ? check_call(head)
                           : check_page(*route, admission.token.get()))
        return std::move(*refusal);
    return admission;
}

void RequestGate::set_server_names(const std::vector<std::string>& names)
{
    const std::lock_guard<std::shared_mutex> lock(m_mutex);
    m_rules.server_names = names;
}

Refusal RequestGate::not_here(const RequestHead& head) const
{
    std::string methods = m_routes.methods_of(head.path);
    if (methods.empty())
        return {404, "nothing is here: calls go to /, health is at /healthz"};
    std::string cause = head.path + " takes " + methods;
    return {405, std::move(cause), std::move(methods)};
}

std::optional<Refusal> RequestGate::check_name(const RequestHead& head) const
{
    const std::string_view authority = authority_of(head);
    if (is_own_name(authority))
        return std::nullopt;
    return Refusal{421, "this server does not go by the name '" + std::string(host_of(authority)) +
                            "'; --server-name gives it further names"};
}

std::optional<Refusal> RequestGate::check_sender(const RequestHead& head) const
{
    if (const auto origin = head.field("Origin"); origin && !is_own_page(*origin, authority_of(head)))
        return Refusal{403, "requests of web pages of another origin are not taken"};
    return std::nullopt;
}

std::variant<std::shared_ptr<const Token>, Refusal> RequestGate::find_token(const RequestHead& head) const
{
    if (m_rules.tokens == nullptr)
        return nullptr;
    const auto authorization = head.field("Authorization");
    auto token = authorization ? m_rules.tokens->find(*authorization) : nullptr;
    if (token == nullptr)
        return Refusal{401, "a valid bearer token is needed"};
    if (token->has_expired(std::time(nullptr)))
        return Refusal{401, "the token '" + token->name + "' has expired"};
    return token;
}

/// A page that makes its own name point here (DNS rebinding) still sends that name.
bool RequestGate::is_own_name(std::string_view authority) const
{
    const std::string_view host = host_of(authority);
    if (!m_rules.address || (authority.empty()))
        return true; // no web page gets to a Unix socket, and none leaves the name out
    if (host == m_rules.address->host || equal_ignoring_case(host, "localhost"))
        return true;
    if (is_any(*m_rules.address) && is_address(host))
        return true;
    return is_server_name(host);
}

bool RequestGate::is_server_name(std::string_view host) const
{
    return std::any_of(m_rules.server_names.begin(), m_rules.server_names.end(),
                       [host](const std::string& name) { return equal_ignoring_case(name, host); });
}

/// A page of this server itself, or one that a proxy with one of the server's names has brought.
bool RequestGate::is_own_page(std::string_view origin, std::string_view authority) const
{
    const std::size_t separator = origin.find("://");
    if (!m_rules.address || separator == std::string_view::npos)
        return false;
    const std::string_view page = origin.substr(separator + 3);
    const std::size_t colon = page.rfind(':');
    const bool is_of_this_port =
        colon != std::string_view::npos && page.substr(colon + 1) == std::to_string(m_rules.address->port);
    if (equal_ignoring_case(origin.substr(0, separator), m_rules.scheme))
        return equal_ignoring_case(page, authority) || (is_of_this_port && is_own_name(page));
    return is_server_name(host_of(page)) && equal_ignoring_case(page, authority);
}

/// What is read tells of the calls of others, but for health.
std::optional<Refusal> RequestGate::check_page(const Route& route, const Token* token)
{
    if (token == nullptr || route.path == "/healthz" || token->allows(route.path))
        return std::nullopt;
    return Refusal{403, "the token '" + token->name + "' does not allow " + route.path};
}

std::optional<Refusal> RequestGate::check_call(const RequestHead& head) const
{
    if (!is_json(head.field("Content-Type")))
        return Refusal{415, "the Content-Type must be application/json"};
    if (head.content_length && *head.content_length > m_rules.max_body)
        return Refusal{413,
                       "the body is longer than the limit of " + std::to_string(m_rules.max_body) + " bytes"};
    return std::nullopt;
}

} // namespace zorbd
