// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/encoding.h"

#include <cstring>
#include <limits>
#include <string>

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
constexpr std::size_t usual_size = 128; // so that the memory need not grow byte by byte

// Throws BAD_PARAM for more than can be counted in 32 bits, too.
void require_within(std::size_t count, DDS::ULong bound, const char* what, const char* unit)
{
    const DDS::ULong most = bound == 0 ? std::numeric_limits<DDS::ULong>::max() : bound;
    if (count > most)
        throw BAD_PARAM((std::string(what) + ": " + std::to_string(count) + ' ' + unit + ", where " +
                         std::to_string(most) + " are allowed")
                            .c_str());
}

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

void Encoder::put(const char* text, DDS::ULong bound, const char* what)
{
    if (text != nullptr && bound != 0)
        require_within(std::strlen(text), bound, what, "characters");
    put(text);
}

void Encoder::put(const std::string& text, DDS::ULong bound, const char* what)
{
    if (text.find('\0') != std::string::npos)
        throw BAD_PARAM((std::string(what) + ": a text cannot have a NUL inside").c_str());
    put(text.c_str(), bound, what);
}

void Encoder::put_count(std::size_t count, DDS::ULong bound, const char* what)
{
    require_within(count, bound, what, "elements");
    put(static_cast<DDS::ULong>(count));
}

void Encoder::put_number(DDS::ULongLong value, std::size_t size)
{
    if (m_bytes.empty())
        m_bytes.reserve(usual_size);
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

void Decoder::get(DDS::String& text, DDS::ULong bound)
{
    get(text);
    if (bound != 0 && std::strlen(text) > bound)
        throw DecodingError();
}

std::size_t Decoder::get_count(DDS::ULong bound, std::size_t least_size)
{
    const auto count = static_cast<std::size_t>(number(sizeof(DDS::ULong)));
    if ((bound != 0 && count > bound) || count > m_left / least_size)
        throw DecodingError();
    return count;
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
