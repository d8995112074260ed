// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_DATA_KX_JSON_H
#define ZEB_API_DATA_KX_JSON_H

#include <string>

struct json_object;

namespace zeb {
namespace api {
namespace data {

/// A JSON value: one counted reference to a json-c object, or none at all (then it is empty, and reads as
/// JSON null).
///
/// Copies share the object. json-c counts without atomic operations, so values that share an object belong
/// to one thread at a time; the host gives every request objects of its own.
///
/// Getters never throw for odd input: a missing key, an empty value or a value that is no JSON object gives
/// an empty KX_JSON, an empty string, or 0.
class KX_JSON
{
public:
    /// Empty.
    KX_JSON() noexcept;
    /// Takes a reference of its own; the caller keeps its own one. A null pointer gives an empty value.
    explicit KX_JSON(const json_object* object) noexcept;
    KX_JSON(const KX_JSON& other) noexcept;
    KX_JSON(KX_JSON&& other) noexcept;
    KX_JSON& operator=(const KX_JSON& other) noexcept;
    KX_JSON& operator=(KX_JSON&& other) noexcept;
    ~KX_JSON();

    /// The member `key`, whatever its type.
    KX_JSON get_json_object(const std::string& key) const;
    /// The member `key` as text: a JSON string's characters (all of them, NULs included), the JSON text of a
    /// value of another type (`true` gives "true", 3 gives "3"); JSON null and a missing key give "".
    std::string get_json_string(const std::string& key) const;
    /// The member `key` as an integer: a number (its fraction is dropped), a text that is a decimal number
    /// (blanks before it, a sign and a fraction are allowed), or a boolean (1 or 0), clamped to the range of
    /// int; anything else, not-a-number included, gives 0.
    int get_json_int(const std::string& key) const;

    /// Set a member; an empty value becomes a JSON object first. Throw std::logic_error when this is a value
    /// of another type, or when a value is to be made a member of itself.
    void set_json_object(const std::string& key, const KX_JSON& value);
    void set_json_string(const std::string& key, const std::string& value);
    void set_json_int(const std::string& key, int value);

    /// Whether this is a JSON object with a member `key` (which may be null).
    bool has_key(const std::string& key) const;

    /// A value with objects of its own, equal to this one. It only reads, so that several threads may copy
    /// one value at the same time.
    KX_JSON deep_copy() const;

    /// The JSON text, without blanks; "null" when empty.
    std::string to_string() const;

    /// The object, still owned by this value; null when empty.
    json_object* get() const noexcept;

private:
    void set_member(const std::string& key, json_object* value);

    json_object* m_object;
};

} // namespace data
} // namespace api
} // namespace zeb

#endif
