// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/data/KX_JSON.h"

#include <json-c/json_object.h>
#include <json-c/linkhash.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "json/json_number.h"
#include "json/json_reader.h"
#include "json/json_value.h"

namespace zeb {
namespace api {
namespace data {

namespace {

/// The member `key` of `object`, which keeps it; null when there is none, or when it is JSON null.
json_object* member(const json_object* object, const std::string& key)
{
    json_object* value = nullptr;
    json_object_object_get_ex(object, key.c_str(), &value);
    return value;
}

template <class Integer>
Integer clamp_to(double value)
{
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value))
        return 0;
    // As a double the largest integer may be one more than it is, and could not be converted back.
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    return static_cast<Integer>(std::max(value, static_cast<double>(Limits::min())));
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

/// `text` from its number on: without blanks and a plus sign.
std::string_view number_in(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (!text.empty() && text.front() == '+' && text.substr(1, 1) != "-")
        text.remove_prefix(1);
    return text;
}

/// `text` as an integer clamped to its type's range; 0 when it is no decimal number. Unlike the C library's
/// conversions it does not depend on the locale and takes no hexadecimal numbers.
template <class Integer>
Integer parse_integer(std::string_view text)
{
    text = number_in(text);
    const char* const end = text.data() + text.size();

    Integer value = 0;
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec == std::errc::invalid_argument ||
        !is_fraction(std::string_view(parsed.ptr, static_cast<std::size_t>(end - parsed.ptr))))
        return 0;
    if (parsed.ec == std::errc::result_out_of_range)
        return text.front() == '-' ? std::numeric_limits<Integer>::min()
                                   : std::numeric_limits<Integer>::max();
    return value;
}

template <class Integer>
Integer integer_of(json_object* value)
{
    switch (json_object_get_type(value)) {
    case json_type_boolean:
    case json_type_int:
        return static_cast<Integer>(std::clamp(json_object_get_int64(value),
                                               std::int64_t(std::numeric_limits<Integer>::min()),
                                               std::int64_t(std::numeric_limits<Integer>::max())));
    case json_type_double:
        return clamp_to<Integer>(json_object_get_double(value));
    case json_type_string:
        return parse_integer<Integer>(strict_json::string_of(value));
    default:
        return 0;
    }
}

double clamp_to_finite(double value)
{
    using Limits = std::numeric_limits<double>;
    return std::isnan(value) ? 0 : std::clamp(value, Limits::lowest(), Limits::max());
}

void skip_digits(std::string_view& text)
{
    text.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_digit) - text.begin()));
}

/// Whether `text` is a decimal number: digits, perhaps with a sign, a fraction and an exponent.
bool is_decimal_number(std::string_view text)
{
    const auto skip_one_of = [&text](std::string_view characters) {
        const bool found = !text.empty() && characters.find(text.front()) != std::string_view::npos;
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    skip_one_of("-");
    if (text.empty() || !is_digit(text.front()))
        return false;
    skip_digits(text);
    if (skip_one_of("."))
        skip_digits(text);
    if (skip_one_of("eE")) {
        skip_one_of("+-");
        if (text.empty())
            return false;
        skip_digits(text);
    }
    return text.empty();
}

double parse_double(std::string_view text)
{
    text = number_in(text);
    return is_decimal_number(text) ? strict_json::double_of(std::string(text)) : 0;
}

double double_of(json_object* value)
{
    switch (json_object_get_type(value)) {
    case json_type_boolean:
    case json_type_int:
    case json_type_double:
        return clamp_to_finite(json_object_get_double(value));
    case json_type_string:
        return clamp_to_finite(parse_double(strict_json::string_of(value)));
    default:
        return 0;
    }
}

bool bool_of(json_object* value)
{
    if (json_object_get_type(value) == json_type_string)
        return strict_json::string_of(value) == "true";
    return double_of(value) != 0;
}

std::string text_of(json_object* value)
{
    switch (json_object_get_type(value)) {
    case json_type_null:
        return std::string();
    case json_type_string:
        return std::string(strict_json::string_of(value));
    default:
        return strict_json::json_text(value);
    }
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

json_object* new_double(double value)
{
    if (!std::isfinite(value))
        throw std::domain_error("KX_JSON: JSON has no number that is not finite");
    return checked(json_object_new_double_s(value, strict_json::double_text(value).c_str()));
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

KX_JSON KX_JSON::empty_object()
{
    KX_JSON object;
    object.m_object = checked(json_object_new_object());
    return object;
}

KX_JSON KX_JSON::empty_array()
{
    KX_JSON array;
    array.m_object = checked(json_object_new_array());
    return array;
}

KX_JSON KX_JSON::parse(const std::string& text, int max_depth)
{
    KX_JSON parsed;
    try {
        parsed.m_object = strict_json::parse_json(text, max_depth).release();
    } catch (const strict_json::JsonSyntaxError& error) {
        throw std::invalid_argument(std::string("KX_JSON: not JSON: ") + error.what());
    }
    return parsed;
}

KX_JSON KX_JSON::get_json_object(const std::string& key) const
{
    return KX_JSON(member(m_object, key));
}

std::string KX_JSON::get_json_string(const std::string& key) const
{
    return text_of(member(m_object, key));
}

int KX_JSON::get_json_int(const std::string& key) const
{
    return integer_of<int>(member(m_object, key));
}

std::int64_t KX_JSON::get_json_int64(const std::string& key) const
{
    return integer_of<std::int64_t>(member(m_object, key));
}

double KX_JSON::get_json_double(const std::string& key) const
{
    return double_of(member(m_object, key));
}

bool KX_JSON::get_json_bool(const std::string& key) const
{
    return bool_of(member(m_object, key));
}

std::string KX_JSON::as_string() const
{
    return text_of(m_object);
}

int KX_JSON::as_int() const
{
    return integer_of<int>(m_object);
}

std::int64_t KX_JSON::as_int64() const
{
    return integer_of<std::int64_t>(m_object);
}

double KX_JSON::as_double() const
{
    return double_of(m_object);
}

bool KX_JSON::as_bool() const
{
    return bool_of(m_object);
}

KX_JSON::Type KX_JSON::type() const noexcept
{
    switch (json_object_get_type(m_object)) {
    case json_type_boolean:
        return Type::boolean;
    case json_type_int:
        return Type::integer;
    case json_type_double:
        return Type::real;
    case json_type_string:
        return Type::string;
    case json_type_array:
        return Type::array;
    case json_type_object:
        return Type::object;
    default:
        return Type::null;
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

void KX_JSON::set_json_int64(const std::string& key, std::int64_t value)
{
    set_member(key, checked(json_object_new_int64(value)));
}

void KX_JSON::set_json_double(const std::string& key, double value)
{
    set_member(key, new_double(value));
}

void KX_JSON::set_json_bool(const std::string& key, bool value)
{
    set_member(key, checked(json_object_new_boolean(value ? 1 : 0)));
}

void KX_JSON::append_json_object(const KX_JSON& value)
{
    if (value.m_object != nullptr && value.m_object == m_object)
        throw std::logic_error("KX_JSON: an array cannot be an element of itself");
    append_element(json_object_get(value.m_object));
}

void KX_JSON::append_json_string(const std::string& value)
{
    append_element(new_string(value));
}

void KX_JSON::append_json_int(int value)
{
    append_element(checked(json_object_new_int(value)));
}

void KX_JSON::append_json_int64(std::int64_t value)
{
    append_element(checked(json_object_new_int64(value)));
}

void KX_JSON::append_json_double(double value)
{
    append_element(new_double(value));
}

void KX_JSON::append_json_bool(bool value)
{
    append_element(checked(json_object_new_boolean(value ? 1 : 0)));
}

std::size_t KX_JSON::size() const noexcept
{
    switch (type()) {
    case Type::array:
        return json_object_array_length(m_object);
    case Type::object:
        return static_cast<std::size_t>(json_object_object_length(m_object));
    default:
        return 0;
    }
}

KX_JSON KX_JSON::element(std::size_t index) const
{
    if (type() != Type::array || index >= json_object_array_length(m_object))
        return KX_JSON();
    return KX_JSON(json_object_array_get_idx(m_object, index));
}

std::vector<KX_JSON> KX_JSON::elements() const
{
    std::vector<KX_JSON> found;
    if (type() != Type::array)
        return found;
    found.reserve(size());
    for (std::size_t i = 0; i < size(); ++i)
        found.push_back(element(i));
    return found;
}

std::vector<std::pair<std::string, KX_JSON>> KX_JSON::members() const
{
    std::vector<std::pair<std::string, KX_JSON>> found;
    if (type() != Type::object)
        return found;
    found.reserve(size());
    json_object_object_foreach(m_object, key, value) found.emplace_back(key, KX_JSON(value));
    return found;
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
    return strict_json::json_text(m_object);
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

/// Takes over the caller's reference to `value`, also when it throws.
void KX_JSON::append_element(json_object* value)
{
    KX_JSON owned;
    owned.m_object = value;
    if (m_object == nullptr)
        m_object = checked(json_object_new_array());
    if (json_object_get_type(m_object) != json_type_array)
        throw std::logic_error(
            "KX_JSON: an element cannot be put at the end of a value that is no JSON array");
    if (json_object_array_add(m_object, value) != 0)
        throw std::bad_alloc();
    owned.m_object = nullptr;
}

} // namespace data
} // namespace api
} // namespace zeb
