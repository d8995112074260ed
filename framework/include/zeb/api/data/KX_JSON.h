// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_DATA_KX_JSON_H
#define ZEB_API_DATA_KX_JSON_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

struct json_object;

namespace zeb {
namespace api {
namespace data {

/// A JSON value: one counted reference to a json-c object, or none at all (then it is empty, and reads as
/// JSON null). No header of json-c is needed to use it.
///
/// Copies share the object. json-c counts without atomic operations, so values that share an object belong
/// to one thread at a time; the host gives every request objects of its own. To hand a value to another
/// thread, hand over a deep_copy(), or its text.
///
/// What reads never throws for odd input: a missing key, an empty value or a value of another type gives an
/// empty KX_JSON, an empty string, 0 or false. (std::bad_alloc can come from everything that is not
/// noexcept.)
///
///     KX_JSON readings = KX_JSON::empty_array();
///     for (const KX_JSON& room : in.get_json_object("params").get_json_object("rooms").elements())
///         readings.append_json_double(temperature_of(room.as_string()));
///     out.set_json_object("result", readings);
class KX_JSON
{
public:
    /// What a value is. An integer is a number that is written without point and exponent.
    enum class Type { null, boolean, integer, real, string, array, object };

    /// Empty.
    KX_JSON() noexcept;
    /// Takes a reference of its own; the caller keeps its own one. A null pointer gives an empty value.
    explicit KX_JSON(const json_object* object) noexcept;
    /// Shares the other's object.
    KX_JSON(const KX_JSON& other) noexcept;
    /// Takes the other's object; the other one is empty afterwards.
    KX_JSON(KX_JSON&& other) noexcept;
    /// Drops its object and shares the other's.
    KX_JSON& operator=(const KX_JSON& other) noexcept;
    /// Drops its object and takes the other's; the other one is empty afterwards.
    KX_JSON& operator=(KX_JSON&& other) noexcept;
    /// Drops its reference; the last one frees the object.
    ~KX_JSON();

    /// The JSON object `{}`.
    static KX_JSON empty_object();
    /// The JSON array `[]`.
    static KX_JSON empty_array();
    /// The value that `text` says: exactly one JSON text (RFC 8259, UTF-8), in which arrays and objects are
    /// nested at most `max_depth` deep. Throws std::invalid_argument, which names the cause and the byte, for
    /// anything else and for what could not be kept exactly: integers beyond 64 bits, numbers beyond a
    /// double, NUL characters in the names of members. Of members with one name the last counts.
    static KX_JSON parse(const std::string& text, int max_depth = 32);

    /// The member `key`, whatever its type.
    KX_JSON get_json_object(const std::string& key) const;
    /// The member `key` as text: a JSON string's characters (all of them, NULs included), the JSON text of a
    /// value of another type (`true` gives "true", 3 gives "3"); JSON null and a missing key give "".
    std::string get_json_string(const std::string& key) const;
    /// The member `key` as an integer: a number (its fraction is dropped), a text that is a decimal number
    /// (blanks before it, a sign and a fraction are allowed), or a boolean (1 or 0), clamped to the range of
    /// int; anything else, not-a-number included, gives 0.
    int get_json_int(const std::string& key) const;
    /// The same in the range of 64 bits.
    std::int64_t get_json_int64(const std::string& key) const;
    /// The member `key` as a number: a number, a text that is a decimal number (blanks before it, a sign, a
    /// fraction and an exponent are allowed), or a boolean (1 or 0), clamped to the finite range of double;
    /// anything else, not-a-number included, gives 0.
    double get_json_double(const std::string& key) const;
    /// The member `key` as a boolean: a boolean, a number (false when it is 0), or the text "true"; anything
    /// else gives false.
    bool get_json_bool(const std::string& key) const;

    /// This value itself, read as the getters above read a member.
    /// @{
    std::string as_string() const;
    int as_int() const;
    std::int64_t as_int64() const;
    double as_double() const;
    bool as_bool() const;
    /// @}

    /// What this value is.
    Type type() const noexcept;

    /// Set a member; an empty value becomes a JSON object first. Throw std::logic_error when this is a value
    /// of another type, or when a value is to be made a member of itself, and std::domain_error for a number
    /// that is not finite, which JSON cannot say. Texts are to be UTF-8, or the host will not send them.
    /// @{
    void set_json_object(const std::string& key, const KX_JSON& value);
    void set_json_string(const std::string& key, const std::string& value);
    void set_json_int(const std::string& key, int value);
    void set_json_int64(const std::string& key, std::int64_t value);
    void set_json_double(const std::string& key, double value);
    void set_json_bool(const std::string& key, bool value);
    /// @}

    /// Put an element at the end of an array; an empty value becomes a JSON array first. They throw as the
    /// setters of members do.
    /// @{
    void append_json_object(const KX_JSON& value);
    void append_json_string(const std::string& value);
    void append_json_int(int value);
    void append_json_int64(std::int64_t value);
    void append_json_double(double value);
    void append_json_bool(bool value);
    /// @}

    /// How many elements an array, or members an object has; 0 for any other value.
    std::size_t size() const noexcept;
    /// An array's element `index`, from 0; empty beyond its end, and when this is no array.
    KX_JSON element(std::size_t index) const;
    /// An array's elements in their order; none when this is no array. They are those of this moment: the
    /// array may be changed while they are gone through.
    std::vector<KX_JSON> elements() const;
    /// An object's members, each with its name, in the order in which they were set; none when this is no
    /// object. They are those of this moment, too.
    std::vector<std::pair<std::string, KX_JSON>> members() const;

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
    void append_element(json_object* value);

    json_object* m_object;
};

} // namespace data
} // namespace api
} // namespace zeb

#endif
