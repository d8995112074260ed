// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/data/KX_JSON.h"

#include <json-c/json_object.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace zeb {
namespace api {
namespace data {

namespace {

constexpr int json_text_style = JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE;

/// The member `key` of `object`, which keeps it; null when there is none, or when it is JSON null.
json_object* member(const json_object* object, const std::string& key)
{
    json_object* value = nullptr;
    json_object_object_get_ex(object, key.c_str(), &value);
    return value;
}

std::string json_text(json_object* object)
{
    std::size_t length = 0;
    const char* const text = json_object_to_json_string_length(object, json_text_style, &length);
    if (text == nullptr)
        throw std::bad_alloc();
    return std::string(text, length);
}

std::string string_value(json_object* string)
{
    return std::string(json_object_get_string(string),
                       static_cast<std::size_t>(json_object_get_string_len(string)));
}

int clamp_to_int(double value)
{
    using Limits = std::numeric_limits<int>;
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp(value, double(Limits::min()), double(Limits::max())));
}

bool is_digit(char character)
{
    return character >= '0' && character <= '9';
}

/// Whether `text`, which follows a number's whole part, is nothing or a fraction.
bool is_fraction(std::string_view text)
{
    return text.empty() || (text.front() == '.' && std::all_of(text.begin() + 1, text.end(), is_digit));
}

/// `text` as an integer clamped to int's range; 0 when it is no decimal number. Unlike the C library's
/// conversions it does not depend on the locale and takes no hexadecimal numbers.
int parse_int(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (!text.empty() && text.front() == '+' && text.substr(1, 1) != "-")
        text.remove_prefix(1);
    const char* const end = text.data() + text.size();

    int value = 0;
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec == std::errc::invalid_argument ||
        !is_fraction(std::string_view(parsed.ptr, static_cast<std::size_t>(end - parsed.ptr))))
        return 0;
    if (parsed.ec == std::errc::result_out_of_range)
        return text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    return value;
}

json_object* checked(json_object* made)
{
    if (made == nullptr)
        throw std::bad_alloc();
    return made;
}

json_object* new_string(const std::string& text)
{
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) - 1)
        throw std::length_error("KX_JSON: a text of " + std::to_string(text.size()) + " bytes is too long");
    return checked(json_object_new_string_len(text.data(), static_cast<int>(text.size())));
}

} // namespace

KX_JSON::KX_JSON() noexcept : m_object(nullptr) {}

KX_JSON::KX_JSON(const json_object* object) noexcept
    : m_object(json_object_get(const_cast<json_object*>(object)))
{
}

KX_JSON::KX_JSON(const KX_JSON& other) noexcept : m_object(json_object_get(other.m_object)) {}

KX_JSON::KX_JSON(KX_JSON&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}

KX_JSON& KX_JSON::operator=(const KX_JSON& other) noexcept
{
    return *this = KX_JSON(other);
}

KX_JSON& KX_JSON::operator=(KX_JSON&& other) noexcept
{
    std::swap(m_object, other.m_object);
    return *this;
}

KX_JSON::~KX_JSON()
{
    json_object_put(m_object);
}

KX_JSON KX_JSON::get_json_object(const std::string& key) const
{
    return KX_JSON(member(m_object, key));
}

std::string KX_JSON::get_json_string(const std::string& key) const
{
    json_object* const value = member(m_object, key);
    switch (json_object_get_type(value)) {
    case json_type_null:
        return std::string();
    case json_type_string:
        return string_value(value);
    default:
        return json_text(value);
    }
}

int KX_JSON::get_json_int(const std::string& key) const
{
    json_object* const value = member(m_object, key);
    switch (json_object_get_type(value)) {
    case json_type_boolean:
    case json_type_int:
        return json_object_get_int(value);
    case json_type_double:
        return clamp_to_int(json_object_get_double(value));
    case json_type_string:
        return parse_int(string_value(value));
    default:
        return 0;
    }
}

void KX_JSON::set_json_object(const std::string& key, const KX_JSON& value)
{
    if (value.m_object != nullptr && value.m_object == m_object)
        throw std::logic_error("KX_JSON: a value cannot be a member ('" + key + "') of itself");
    set_member(key, json_object_get(value.m_object));
}

void KX_JSON::set_json_string(const std::string& key, const std::string& value)
{
    set_member(key, new_string(value));
}

void KX_JSON::set_json_int(const std::string& key, int value)
{
    set_member(key, checked(json_object_new_int(value)));
}

bool KX_JSON::has_key(const std::string& key) const
{
    return json_object_object_get_ex(m_object, key.c_str(), nullptr) != 0;
}

KX_JSON KX_JSON::deep_copy() const
{
    KX_JSON copy;
    if (m_object != nullptr && json_object_deep_copy(m_object, &copy.m_object, nullptr) != 0)
        throw std::bad_alloc();
    return copy;
}

std::string KX_JSON::to_string() const
{
    return json_text(m_object);
}

json_object* KX_JSON::get() const noexcept
{
    return m_object;
}

/// Takes over the caller's reference to `value`, also when it throws.
void KX_JSON::set_member(const std::string& key, json_object* value)
{
    KX_JSON owned;
    owned.m_object = value;
    if (m_object == nullptr)
        m_object = checked(json_object_new_object());
    if (json_object_get_type(m_object) != json_type_object)
        throw std::logic_error("KX_JSON: '" + key + "' cannot be set in a value that is no JSON object");
    if (json_object_object_add(m_object, key.c_str(), value) != 0)
        throw std::bad_alloc();
    owned.m_object = nullptr;
}

} // namespace data
} // namespace api
} // namespace zeb
