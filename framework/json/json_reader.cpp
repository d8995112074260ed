// SPDX-License-Identifier: Apache-2.0
#include "json/json_reader.h"

// RapidJSON 1.1 adds to the null pointer that its stack begins with, which clang's sanitizer does not let
// pass.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

#include <charconv>
#include <cstdint>
#include <new>
#include <optional>
#include <vector>

#include "json/json_number.h"
#include "json/utf8.h"

namespace strict_json {
namespace {

constexpr unsigned reader_flags = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;

JsonValue owned(json_object* made)
{
    if (made == nullptr)
        throw std::bad_alloc();
    return JsonValue(made);
}

bool is_integer(std::string_view number)
{
    return number.find_first_of(".eE") == std::string_view::npos;
}

template <class Integer>
std::optional<Integer> read_integer(std::string_view number)
{
    Integer value = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
    if (read.ec != std::errc())
        return std::nullopt;
    return value;
}

/// Makes json-c's objects of what RapidJSON reads. A handler that returns false ends the reading; its cause
/// then tells why.
class ObjectMaker : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, ObjectMaker>
{
public:
    /// `has_escapes` tells whether strings may have got characters that were not in the text.
    ObjectMaker(int max_depth, bool has_escapes)
        : m_max_depth(static_cast<std::size_t>(max_depth)), m_has_escapes(has_escapes)
    {
    }

    const char* cause() const { return m_cause; }
    JsonValue take() { return std::move(m_root); }

    bool Null() { return put(nullptr); }
    bool Bool(bool value) { return put(owned(json_object_new_boolean(value ? 1 : 0))); }
    bool String(const char* text, rapidjson::SizeType size, bool /*copy*/)
    {
        if (has_half_a_pair({text, size}))
            return refuse("half a surrogate pair");
        return put(json_string({text, size}));
    }
    bool RawNumber(const char* text, rapidjson::SizeType size, bool /*copy*/)
    {
        const std::string number(text, size);
        return is_integer(number) ? put_integer(number) : put_double(number);
    }

    bool StartObject() { return open(owned(json_object_new_object())); }
    bool Key(const char* text, rapidjson::SizeType size, bool /*copy*/)
    {
        const std::string_view key(text, size);
        if (key.find('\0') != std::string_view::npos)
            return refuse("NUL character in a member name"); // json-c would cut it short
        if (has_half_a_pair(key))
            return refuse("half a surrogate pair");
        m_key.assign(key);
        return true;
    }
    bool EndObject(rapidjson::SizeType /*members*/) { return close(); }
    bool StartArray() { return open(owned(json_object_new_array())); }
    bool EndArray(rapidjson::SizeType /*elements*/) { return close(); }

private:
    /// RapidJSON 1.1 lets an escape of the second half alone pass.
    bool has_half_a_pair(std::string_view text) const { return m_has_escapes && find_invalid_utf8(text); }

    bool refuse(const char* cause)
    {
        m_cause = cause;
        return false;
    }

    bool put_integer(const std::string& number)
    {
        if (const auto value = read_integer<std::int64_t>(number))
            return put(owned(json_object_new_int64(*value)));
        if (const auto value = read_integer<std::uint64_t>(number))
            return put(owned(json_object_new_uint64(*value)));
        return refuse("integer beyond 64 bits");
    }

    /// It keeps its digits, so that they come back as they were.
    bool put_double(const std::string& number)
    {
        return put(owned(json_object_new_double_s(double_of(number), number.c_str())));
    }

    bool open(JsonValue container)
    {
        if (m_open.size() == m_max_depth)
            return refuse("nesting too deep");
        json_object* opened = container.get();
        if (!put(std::move(container)))
            return false;
        m_open.push_back(opened);
        return true;
    }

    bool close()
    {
        m_open.pop_back();
        return true;
    }

    /// Where it belongs: at the top, or at the end of what is open.
    bool put(JsonValue value)
    {
        if (m_open.empty())
            m_root = std::move(value);
        else if (json_object_is_type(m_open.back(), json_type_array))
            append_element(m_open.back(), std::move(value));
        else
            put_member(m_open.back(), m_key.c_str(), std::move(value));
        return true;
    }

    const std::size_t m_max_depth;
    const bool m_has_escapes;
    JsonValue m_root;
    std::vector<json_object*> m_open; ///< arrays and objects that have begun, owned by the root
    std::string m_key;                ///< of the member that comes
    const char* m_cause = nullptr;
};

/// Looks at the texts only.
class TextCheck : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TextCheck>
{
public:
    static bool String(const char* text, rapidjson::SizeType size, bool /*copy*/)
    {
        return !find_invalid_utf8({text, size});
    }
    static bool Key(const char* text, rapidjson::SizeType size, bool copy)
    {
        return String(text, size, copy);
    }
    static bool RawNumber(const char* /*text*/, rapidjson::SizeType /*size*/, bool /*copy*/) { return true; }
};

/// Most results are small integers.
bool is_small_integer(const std::string& text)
{
    constexpr std::size_t most_digits = 9;
    const std::size_t sign = text.front() == '-' ? 1 : 0;
    const std::size_t digits = text.size() - sign;
    if (digits == 0 || digits > most_digits || (text[sign] == '0' && digits > 1))
        return false;
    return text.find_first_not_of("0123456789", sign) == std::string::npos;
}

std::string cause_of(const rapidjson::ParseResult& result)
{
    std::string cause = rapidjson::GetParseError_En(result.Code());
    cause.pop_back(); // the full stop
    return cause;
}

} // namespace

JsonSyntaxError::JsonSyntaxError(const std::string& cause, std::size_t offset)
    : std::runtime_error(cause + " at byte " + std::to_string(offset))
{
}

JsonValue parse_json(const std::string& text, int max_depth)
{
    // RapidJSON's own check of the encoding reads on behind the end of a text that ends within a character.
    if (const auto bad = find_invalid_utf8(text))
        throw JsonSyntaxError("invalid UTF-8", *bad);
    ObjectMaker maker(max_depth, text.find('\\') != std::string::npos);
    rapidjson::Reader reader;
    rapidjson::StringStream stream(text.c_str());
    const rapidjson::ParseResult result = reader.Parse<reader_flags>(stream, maker);
    if (!result)
        throw JsonSyntaxError(maker.cause() != nullptr ? maker.cause() : cause_of(result), result.Offset());
    if (stream.Tell() != text.size()) // where RapidJSON takes a NUL character for the end
        throw JsonSyntaxError("NUL character", stream.Tell());
    return maker.take();
}

bool is_json(const std::string& text)
{
    if (text.empty() || is_small_integer(text))
        return !text.empty();
    if (find_invalid_utf8(text))
        return false;
    TextCheck check;
    rapidjson::Reader reader;
    rapidjson::StringStream stream(text.c_str());
    return !reader.Parse<reader_flags>(stream, check).IsError() && stream.Tell() == text.size();
}

} // namespace strict_json
