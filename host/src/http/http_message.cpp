// SPDX-License-Identifier: Apache-2.0
#include "http/http_message.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>

namespace zorbd {
namespace {

const char* reason_of(unsigned status)
{
    switch (status) {
    case 200:
        return "OK";
    case 204:
        return "No Content";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 408:
        return "Request Timeout";
    case 413:
        return "Content Too Large";
    case 415:
        return "Unsupported Media Type";
    case 421:
        return "Misdirected Request";
    case 431:
        return "Request Header Fields Too Large";
    case 503:
        return "Service Unavailable";
    default:
        return "Error";
    }
}

/// The Date line of this second.
const std::string& date_line()
{
    thread_local std::time_t of = 0;
    thread_local std::string line;
    const std::time_t now = std::time(nullptr);
    if (now != of) {
        std::tm parts{};
        gmtime_r(&now, &parts);
        std::array<char, 64> text{};
        const std::size_t size =
            std::strftime(text.data(), text.size(), "Date: %a, %d %b %Y %H:%M:%S GMT\r\n", &parts);
        line.assign(text.data(), size);
        of = now;
    }
    return line;
}

/// The headers that a status calls for.
const char* fields_of(unsigned status)
{
    if (status == 401)
        return "WWW-Authenticate: Bearer\r\n";
    if (status == 503)
        return "Retry-After: 1\r\n";
    return "";
}

/// What every answer's head begins with.
void append_head_start(std::string& text, const HttpResponse& response)
{
    text.append("HTTP/1.1 ").append(std::to_string(response.status)).append(1, ' ');
    text.append(reason_of(response.status)).append("\r\n").append(date_line());
    text.append("Cache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n");
    text.append(fields_of(response.status)).append(response.fields);
}

void append_type(std::string& text, const HttpResponse& response)
{
    text.append("Content-Type: ").append(response.content_type).append("\r\n");
}

bool knows_chunks(const RequestHead& request)
{
    return request.minor_version > 0;
}

} // namespace

bool equal_ignoring_case(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

std::string_view RequestHead::name_of(const Field& field) const
{
    return std::string_view(m_texts).substr(field.begin, field.name_size);
}

const RequestHead::Field* RequestHead::find(std::string_view name) const
{
    const auto found = std::find_if(m_fields.begin(), m_fields.end(), [&](const Field& field) {
        return equal_ignoring_case(name_of(field), name);
    });
    return found == m_fields.end() ? nullptr : &*found;
}

std::optional<std::string_view> RequestHead::field(std::string_view name) const
{
    const Field* found = find(name);
    if (found == nullptr)
        return std::nullopt;
    return std::string_view(m_texts).substr(found->begin + found->name_size, found->value_size);
}

std::size_t RequestHead::count(std::string_view name) const
{
    const auto matches = [&](const Field& field) { return equal_ignoring_case(name_of(field), name); };
    return static_cast<std::size_t>(std::count_if(m_fields.begin(), m_fields.end(), matches));
}

void RequestHead::add_field(std::string_view name, std::string_view value)
{
    m_fields.push_back({m_texts.size(), name.size(), value.size()});
    m_texts.append(name).append(value);
}

void RequestHead::clear()
{
    for (std::string* text : {&method, &path, &query, &authority, &m_texts})
        text->clear();
    m_fields.clear();
    minor_version = 1;
    keep_alive = true;
    content_length.reset();
    has_body = false;
}

void append_response_head(std::string& text, const HttpResponse& response, const RequestHead& request,
                          bool keeps_alive)
{
    append_head_start(text, response);
    if (!keeps_alive)
        text.append("Connection: close\r\n");
    else if (request.minor_version == 0)
        text.append("Connection: keep-alive\r\n");
    if (!response.body.empty() || request.method == "HEAD")
        append_type(text, response);
    if (response.status != 204)
        text.append("Content-Length: ").append(std::to_string(response.body.size())).append("\r\n");
    text.append("\r\n");
}

void append_stream_head(std::string& text, const HttpResponse& response, const RequestHead& request)
{
    append_head_start(text, response);
    append_type(text, response);
    if (knows_chunks(request))
        text.append("Transfer-Encoding: chunked\r\n");
    text.append("Connection: close\r\n\r\n");
}

void append_stream_piece(std::string& text, const RequestHead& request, std::string_view piece)
{
    if (!knows_chunks(request)) {
        text.append(piece);
        return;
    }
    std::array<char, 2 * sizeof(std::size_t)> size{};
    const auto written = std::to_chars(size.data(), size.data() + size.size(), piece.size(), 16);
    text.append(size.data(), written.ptr).append("\r\n").append(piece).append("\r\n");
}

void append_stream_end(std::string& text, const RequestHead& request)
{
    if (knows_chunks(request))
        text.append("0\r\n\r\n");
}

} // namespace zorbd
