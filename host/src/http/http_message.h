// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HTTP_MESSAGE_H
#define ZORBD_HTTP_MESSAGE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorbd {

/// The head of a request: the request line and the header fields, checked for form.
class RequestHead
{
public:
    std::string method;
    std::string path;      ///< of the target, without the query
    std::string query;     ///< without the question mark
    std::string authority; ///< of a target in absolute form, otherwise empty
    int minor_version = 1;
    bool keep_alive = true; ///< the client may want to send a further request
    std::optional<std::uint64_t> content_length;
    bool has_body = false; ///< a body follows: a length other than 0, or chunks

    /// The value of the header field of that name, whatever the case of its letters; the first of several.
    std::optional<std::string_view> field(std::string_view name) const;
    /// How many header fields have that name.
    std::size_t count(std::string_view name) const;

    void add_field(std::string_view name, std::string_view value);
    /// Makes it as new, but keeps its memory.
    void clear();

private:
    struct Field
    {
        std::size_t begin;
        std::size_t name_size;
        std::size_t value_size;
    };

    std::string_view name_of(const Field& field) const;
    const Field* find(std::string_view name) const;

    std::string m_texts; ///< names and values one after the other
    std::vector<Field> m_fields;
};

/// What is sent in answer to a request, besides what every answer has.
struct HttpResponse
{
    unsigned status = 200;
    std::string body;
    const char* content_type = "application/json";
    /// Further header lines, each with its CRLF.
    std::string fields{};
};

/// The head of an answer as it goes over the wire. `keeps_alive` tells whether the connection stays open.
void append_response_head(std::string& text, const HttpResponse& response, const RequestHead& request,
                          bool keeps_alive);

/// The same for an answer whose body comes bit by bit: in chunks where the client knows them, and otherwise
/// until the end of the connection, which is closed after it in any case.
void append_stream_head(std::string& text, const HttpResponse& response, const RequestHead& request);
void append_stream_piece(std::string& text, const RequestHead& request, std::string_view piece);
void append_stream_end(std::string& text, const RequestHead& request);

bool equal_ignoring_case(std::string_view left, std::string_view right);

} // namespace zorbd

#endif
