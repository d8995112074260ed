// SPDX-License-Identifier: Apache-2.0
#include "http/request_gate.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "console/console_files.h"

namespace zorbd {
namespace {

constexpr std::string_view call_path = "/";

/// What is read, not called.
struct Page
{
    std::string_view path;
    Route route;
};

constexpr Page pages[] = {
    {"/healthz", Route::health}, {"/events", Route::events}, {"/metrics", Route::metrics}};

const Page* find_page(std::string_view path)
{
    const auto* found = std::find_if(std::begin(pages), std::end(pages),
                                     [path](const Page& page) { return page.path == path; });
    return found == std::end(pages) ? nullptr : found;
}

bool equal_ignoring_case(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

/// A media type without its parameters.
std::string_view media_type(std::string_view content_type)
{
    const std::string_view type = content_type.substr(0, content_type.find(';'));
    return type.substr(0, type.find_last_not_of(" \t") + 1);
}

bool is_json(const std::optional<std::string_view>& content_type)
{
    return content_type && equal_ignoring_case(media_type(*content_type), "application/json");
}

bool is_longer(std::string_view content_length, std::size_t limit)
{
    std::size_t length = 0;
    const auto read =
        std::from_chars(content_length.data(), content_length.data() + content_length.size(), length);
    return read.ec == std::errc::result_out_of_range || length > limit;
}

} // namespace

RequestGate::RequestGate(AccessRules rules) : m_rules(std::move(rules)) {}

std::variant<Route, Refusal> RequestGate::check(const RequestHead& head) const
{
    const bool is_read = head.method == "GET" || head.method == "HEAD";
    if (m_rules.has_console && is_read && find_console_file(head.path) != nullptr)
        return Route::console; // which asks for the token itself, and holds nothing secret
    if (const auto refusal = check_sender(head))
        return *refusal;
    if (const Page* page = find_page(head.path)) {
        if (is_read)
            return page->route;
        return Refusal{405, std::string(page->path) + " takes GET", "GET, HEAD"};
    }
    if (head.path == call_path)
        return check_call(head);
    return Refusal{404, "nothing is here: calls go to /, health is at /healthz", {}};
}

std::optional<Refusal> RequestGate::check_sender(const RequestHead& head) const
{
    if (head.origin && !is_own(*head.origin))
        return Refusal{403, "requests of web pages of another origin are not taken", {}};
    if (m_rules.token && !(head.authorization && m_rules.token->admits(*head.authorization)))
        return Refusal{401, "a valid bearer token is needed", {}};
    return std::nullopt;
}

std::variant<Route, Refusal> RequestGate::check_call(const RequestHead& head) const
{
    if (head.method != "POST")
        return Refusal{405, "calls are made with POST", m_rules.has_console ? "GET, HEAD, POST" : "POST"};
    if (!is_json(head.content_type))
        return Refusal{415, "the Content-Type must be application/json", {}};
    if (head.content_length && is_longer(*head.content_length, m_rules.max_body))
        return body_too_large();
    return Route::json_rpc;
}

Refusal RequestGate::body_too_large() const
{
    return {413, "the body is longer than the limit of " + std::to_string(m_rules.max_body) + " bytes", {}};
}

bool RequestGate::is_own(std::string_view origin) const
{
    return std::any_of(m_rules.own_origins.begin(), m_rules.own_origins.end(),
                       [origin](const std::string& own) { return equal_ignoring_case(own, origin); });
}

} // namespace zorbd
