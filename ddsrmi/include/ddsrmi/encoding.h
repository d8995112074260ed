// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_ENCODING_H
#define DDSRMI_ENCODING_H

#include <cstddef>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/exceptions.h"

// How the arguments of a request and the result of a reply travel: one behind the other, numbers with their
// lowest byte first, a text as the count of its bytes (its NUL included) and the bytes, a sequence as the
// count of its elements and the elements. For generated code.

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// What was to be decoded is not what the interface says.
class DecodingError : public virtual SystemException
{
public:
    DecodingError();
    ~DecodingError() noexcept override;
};

/// What the handler of a reply throws when the reply says that the implementation threw a UserException:
/// apart from what a reply hook throws itself.
class RaisedException
{
public:
    explicit RaisedException(const std::exception_ptr& exception) : m_exception(exception) {}
    [[noreturn]] void rethrow() const { std::rethrow_exception(m_exception); }

private:
    std::exception_ptr m_exception;
};

/// Collects values as bytes.
class Encoder
{
public:
    void put(bool value) { put(static_cast<DDS::Octet>(value ? 1 : 0)); }
    void put(DDS::Octet value) { m_bytes.push_back(value); }
    void put(DDS::Char value) { put(static_cast<DDS::Octet>(value)); }
    void put(DDS::Short value) { put_number(static_cast<DDS::UShort>(value), sizeof value); }
    void put(DDS::UShort value) { put_number(value, sizeof value); }
    void put(DDS::Long value) { put_number(static_cast<DDS::ULong>(value), sizeof value); }
    void put(DDS::ULong value) { put_number(value, sizeof value); }
    void put(DDS::LongLong value) { put_number(static_cast<DDS::ULongLong>(value), sizeof value); }
    void put(DDS::ULongLong value) { put_number(value, sizeof value); }
    void put(DDS::Float value);
    void put(DDS::Double value);
    /// Null counts as the empty text. Throws BAD_PARAM for a text of 4 GiB.
    void put(const char* text);
    /// Throws BAD_PARAM, which names `what`, for a text of more than `bound` characters, unless that is 0.
    void put(const char* text, DDS::ULong bound, const char* what);
    /// The same, also for a text with a NUL inside.
    void put(const std::string& text, DDS::ULong bound, const char* what);
    /// Of the elements of a sequence. Throws BAD_PARAM, which names `what`, for more than `bound`, unless
    /// that is 0.
    void put_count(std::size_t count, DDS::ULong bound, const char* what);

    const std::vector<DDS::Octet>& bytes() const { return m_bytes; }
    std::vector<DDS::Octet> release() { return std::move(m_bytes); }

private:
    void put_number(DDS::ULongLong value, std::size_t size);

    std::vector<DDS::Octet> m_bytes;
};

/// An arrived result, as DDS::ReadCondition::sample() points to it.
struct EncodedResult
{
    DDS::Octet* bytes;
    std::size_t size;
};

/// Gives the values back, in the order in which they were put. Throws DecodingError where they are not there.
class Decoder
{
public:
    /// The bytes stay the caller's and must outlive the decoder and the texts that it gives.
    Decoder(DDS::Octet* bytes, std::size_t size) : m_next(bytes), m_left(size) {}
    /// Of an arrived reply's result.
    explicit Decoder(const DDS::ReadCondition& reply);

    void get(DDS::Octet& value) { value = *take(1); }
    void get(DDS::Char& value) { value = static_cast<DDS::Char>(*take(1)); }
    void get(DDS::Short& value) { value = static_cast<DDS::Short>(number(sizeof value)); }
    void get(DDS::UShort& value) { value = static_cast<DDS::UShort>(number(sizeof value)); }
    void get(DDS::Long& value) { value = static_cast<DDS::Long>(number(sizeof value)); }
    void get(DDS::ULong& value) { value = static_cast<DDS::ULong>(number(sizeof value)); }
    void get(DDS::LongLong& value) { value = static_cast<DDS::LongLong>(number(sizeof value)); }
    void get(DDS::ULongLong& value) { value = number(sizeof value); }
    void get(DDS::Float& value);
    void get(DDS::Double& value);
    /// The text stays where it is, among the decoder's bytes.
    void get(DDS::String& text);
    /// Throws also for a text of more than `bound` characters, unless that is 0.
    void get(DDS::String& text, DDS::ULong bound);
    /// Of the elements of a sequence. Throws also for more than `bound`, unless that is 0, and for more than
    /// are left when each takes up at least that size.
    std::size_t get_count(DDS::ULong bound, std::size_t least_size);

    /// Throws DecodingError when there is something left.
    void finish() const;

private:
    DDS::Octet* take(std::size_t size);
    DDS::ULongLong number(std::size_t size);

    DDS::Octet* m_next;
    std::size_t m_left;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
