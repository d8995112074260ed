// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/encoding.h"

#include <cstring>
#include <limits>

namespace org::opensplice::DDS_RMI {

namespace {

template <class To, class From>
To same_bits(From from)
{
    static_assert(sizeof(To) == sizeof(From), "these must be of one size");
    To to{};
    std::memcpy(&to, &from, sizeof to);
    return to;
}

constexpr unsigned bits_in_a_byte = 8;

const EncodedResult& result_of(const DDS::ReadCondition& condition)
{
    return *static_cast<const EncodedResult*>(condition.sample());
}

} // namespace

DecodingError::DecodingError() : SystemException("the bytes are not what the interface says") {}
DecodingError::~DecodingError() noexcept = default;

void Encoder::put(DDS::Float value)
{
    put(same_bits<DDS::ULong>(value));
}

void Encoder::put(DDS::Double value)
{
    put(same_bits<DDS::ULongLong>(value));
}

void Encoder::put(const char* text)
{
    const char* const present = text == nullptr ? "" : text;
    const std::size_t size = std::strlen(present) + 1;
    if (size > std::numeric_limits<DDS::ULong>::max())
        throw BAD_PARAM("a text is too long to be sent");
    put(static_cast<DDS::ULong>(size));
    m_bytes.insert(m_bytes.end(), present, present + size);
}

void Encoder::put_number(DDS::ULongLong value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        m_bytes.push_back(static_cast<DDS::Octet>(value >> (i * bits_in_a_byte)));
}

Decoder::Decoder(const DDS::ReadCondition& reply)
    : m_next(result_of(reply).bytes), m_left(result_of(reply).size)
{
}

void Decoder::get(DDS::Float& value)
{
    value = same_bits<DDS::Float>(static_cast<DDS::ULong>(number(sizeof value)));
}

void Decoder::get(DDS::Double& value)
{
    value = same_bits<DDS::Double>(number(sizeof value));
}

void Decoder::get(DDS::String& text)
{
    const auto size = static_cast<std::size_t>(number(sizeof(DDS::ULong)));
    DDS::Octet* const characters = take(size);
    if (size == 0 || characters[size - 1] != 0)
        throw DecodingError();
    text = reinterpret_cast<DDS::String>(characters);
}

void Decoder::finish() const
{
    if (m_left != 0)
        throw DecodingError();
}

DDS::Octet* Decoder::take(std::size_t size)
{
    if (size > m_left)
        throw DecodingError();
    DDS::Octet* const taken = m_next;
    m_next += size;
    m_left -= size;
    return taken;
}

DDS::ULongLong Decoder::number(std::size_t size)
{
    const DDS::Octet* const bytes = take(size);
    DDS::ULongLong value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value |= static_cast<DDS::ULongLong>(bytes[i]) << (i * bits_in_a_byte);
    return value;
}

} // namespace org::opensplice::DDS_RMI
