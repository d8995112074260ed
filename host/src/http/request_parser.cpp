// SPDX-License-Identifier: Apache-2.0
#include "http/request_parser.h"

#include <boost/beast/http/basic_parser.hpp>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace zorbd {
namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;
using Text = beast::string_view;

std::string_view view(Text text)
{
    return {text.data(), text.size()};
}

/// Takes scheme and authority off a target in absolute form. False when it has another form.
bool split_absolute(std::string_view& target, std::string& authority)
{
    constexpr std::string_view schemes[] = {"http://", "https://"};
    for (const std::string_view scheme : schemes) {
        if (target.size() < scheme.size() || !equal_ignoring_case(target.substr(0, scheme.size()), scheme))
            continue;
        target.remove_prefix(scheme.size());
        const std::size_t end = std::min(target.find_first_of("/?"), target.size());
        authority = target.substr(0, end);
        target.remove_prefix(end);
        return true;
    }
    return false;
}

/// The target's parts; false when it is in no form that this server takes.
bool split_target(std::string_view target, RequestHead& head)
{
    if (split_absolute(target, head.authority)) {
        if (head.authority.empty())
            return false;
    } else if (target.front() != '/') {
        return false;
    }
    const std::size_t mark = target.find('?');
    head.path = target.substr(0, mark);
    if (head.path.empty())
        head.path = "/";
    if (mark != std::string_view::npos)
        head.query = target.substr(mark + 1);
    return true;
}

} // namespace

class RequestParser::Parser : public http::basic_parser<true>
{
public:
    explicit Parser(RequestParser& owner) : m_owner(owner)
    {
        header_limit(max_head);
        // Our own limit is looked at where the bytes are taken in; without any, Beast 1.74 takes no body.
        body_limit(std::numeric_limits<std::uint64_t>::max());
    }

private:
    using Error = http::error;
    using ErrorCode = beast::error_code;

    void on_request_impl(http::verb /*verb*/, Text method, Text target, int version,
                         ErrorCode& error) override
    {
        m_owner.m_head.method = view(method);
        m_owner.m_head.minor_version = version % 10;
        if (!split_target(view(target), m_owner.m_head))
            error = Error::bad_target;
    }

    void on_response_impl(int /*code*/, Text /*reason*/, int /*version*/, ErrorCode& error) override
    {
        error = Error::bad_version;
    }

    void on_field_impl(http::field /*field*/, Text name, Text value, ErrorCode& /*error*/) override
    {
        if (!is_header_done()) // a field after the last chunk says nothing here
            m_owner.m_head.add_field(view(name), view(value));
    }

    void on_header_impl(ErrorCode& /*error*/) override {}
    void on_body_init_impl(const boost::optional<std::uint64_t>& /*size*/, ErrorCode& /*error*/) override {}

    std::size_t on_body_impl(Text body, ErrorCode& error) override
    {
        if (body.size() > m_owner.m_max_body - m_owner.m_body.size()) {
            error = Error::body_limit;
            return 0;
        }
        m_owner.m_body.append(body.data(), body.size());
        return body.size();
    }

    void on_chunk_header_impl(std::uint64_t /*size*/, Text /*extensions*/, ErrorCode& /*error*/) override {}

    std::size_t on_chunk_body_impl(std::uint64_t /*remain*/, Text body, ErrorCode& error) override
    {
        return on_body_impl(body, error);
    }

    void on_finish_impl(ErrorCode& /*error*/) override {}

    RequestParser& m_owner;
};

RequestParser::RequestParser() : m_parser(std::make_unique<Parser>(*this)) {}
RequestParser::~RequestParser() = default;

bool RequestParser::has_begun() const
{
    return m_parser->got_some();
}

std::size_t RequestParser::feed(std::string_view bytes)
{
    if (bytes.empty() || m_state == State::complete || m_state == State::failed)
        return 0;
    m_parser->eager(m_state == State::body);
    beast::error_code error;
    const std::size_t used = m_parser->put(boost::asio::const_buffer(bytes.data(), bytes.size()), error);
    if (m_state == State::head)
        m_head_size += used;
    if (m_head_size > max_head || error == http::error::header_limit) {
        fail(431, "the head is longer than the limit of " + std::to_string(max_head) + " bytes");
    } else if (error == http::error::need_more) {
        if (bytes.size() - used > max_head)
            fail(400, "the line before a chunk, or what follows the last chunk, is too long");
    } else if (error == http::error::body_limit) {
        fail(413, "the body is longer than the limit of " + std::to_string(m_max_body) + " bytes");
    } else if (error) {
        fail(400, error.message());
    } else if (m_state == State::head && m_parser->is_header_done()) {
        check_head();
    } else if (m_parser->is_done()) {
        m_state = State::complete;
    }
    return used;
}

/// What Beast lets pass although two readers may read it in two ways.
void RequestParser::check_head()
{
    const auto coding = m_head.field("Transfer-Encoding");
    const std::size_t hosts = m_head.count("Host");
    if (m_head.count("Content-Length") > 1)
        return fail(400, "more than one Content-Length");
    if (coding && (m_head.minor_version == 0 || !equal_ignoring_case(*coding, "chunked")))
        return fail(400, "a Transfer-Encoding other than chunked");
    if (hosts > 1 || (hosts == 0 && m_head.minor_version != 0))
        return fail(400, hosts == 0 ? "no Host" : "more than one Host");
    if (const auto length = m_parser->content_length())
        m_head.content_length = *length;
    m_head.keep_alive = m_parser->keep_alive();
    m_head.has_body = !m_parser->is_done();
    m_state = m_head.has_body ? State::body : State::complete;
}

void RequestParser::fail(unsigned status, std::string cause)
{
    m_state = State::failed;
    m_status = status;
    m_cause = std::move(cause);
}

void RequestParser::reset()
{
    m_parser = std::make_unique<Parser>(*this);
    m_state = State::head;
    m_head.clear();
    m_head_size = 0;
    m_body.clear();
}

} // namespace zorbd
