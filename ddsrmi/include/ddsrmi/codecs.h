// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CODECS_H
#define DDSRMI_CODECS_H

#include <array>
#include <cstddef>
#include <exception>
#include <string>
#include <vector>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/encoding.h"
#include "ddsrmi/exceptions.h"
#include "ddsrmi/interface_info.h"

// How each type of an interface file travels, for generated code: a codec is put together as the type is.
// Each has
//   Value          the C++ type of members and elements
//   least_size()   the fewest bytes that a value takes up
//   put()          encodes; throws BAD_PARAM, which names `what`, for a value that is none of the type
//   get()          decodes; throws DecodingError for bytes that are no value of the type

namespace org {
namespace opensplice {
namespace DDS_RMI {
namespace codec {

template <class Plain>
struct Number
{
    typedef Plain Value;
    static std::size_t least_size() { return sizeof(Value); }
    static void put(Encoder& encoder, Value value, const char* /*what*/) { encoder.put(value); }
    static void get(Decoder& decoder, Value& value) { decoder.get(value); }
};

struct Truth
{
    typedef DDS::Boolean Value;
    static std::size_t least_size() { return sizeof(Value); }
    static void put(Encoder& encoder, Value value, const char* /*what*/) { encoder.put(value != 0); }
    static void get(Decoder& decoder, Value& value) { decoder.get(value); }
};

/// As a count of 32 bits from 0 on.
template <class Enum, DDS::ULong count>
struct Enumeration
{
    typedef Enum Value;
    static std::size_t least_size() { return sizeof(DDS::ULong); }
    static void put(Encoder& encoder, Value value, const char* what)
    {
        const DDS::ULong number = static_cast<DDS::ULong>(value);
        if (number >= count)
            throw BAD_PARAM((std::string(what) + ": its enum has no such value").c_str());
        encoder.put(number);
    }
    static void get(Decoder& decoder, Value& value)
    {
        DDS::ULong number = 0;
        decoder.get(number);
        if (number >= count)
            throw DecodingError();
        value = static_cast<Value>(number);
    }
};

/// A bound of 0 is none.
template <DDS::ULong bound>
struct Text
{
    typedef std::string Value;
    static std::size_t least_size() { return sizeof(DDS::ULong) + 1; }
    static void put(Encoder& encoder, const char* text, const char* what) { encoder.put(text, bound, what); }
    static void put(Encoder& encoder, const std::string& text, const char* what)
    {
        encoder.put(text, bound, what);
    }
    static void get(Decoder& decoder, DDS::String& text) { decoder.get(text, bound); }
    static void get(Decoder& decoder, std::string& text)
    {
        DDS::String found = nullptr;
        decoder.get(found, bound);
        text = found;
    }
    /// Makes a copy, for who may replace it.
    static void get(Decoder& decoder, OwnedString& text)
    {
        DDS::String found = nullptr;
        decoder.get(found, bound);
        text.slot() = DDS::string_dup(found);
    }
};

/// A bound of 0 is none.
template <class Element, DDS::ULong bound>
struct Sequence
{
    typedef std::vector<typename Element::Value> Value;
    static std::size_t least_size() { return sizeof(DDS::ULong); }
    static void put(Encoder& encoder, const Value& value, const char* what)
    {
        encoder.put_count(value.size(), bound, what);
        for (const typename Element::Value& element : value)
            Element::put(encoder, element, what);
    }
    /// Takes no memory for elements that the bytes cannot hold.
    static void get(Decoder& decoder, Value& value)
    {
        value.clear();
        value.resize(decoder.get_count(bound, Element::least_size()));
        for (typename Element::Value& element : value)
            Element::get(decoder, element);
    }
};

template <class Element, std::size_t size>
struct Array
{
    typedef std::array<typename Element::Value, size> Value;
    static std::size_t least_size() { return size * Element::least_size(); }
    static void put(Encoder& encoder, const Value& value, const char* what)
    {
        for (const typename Element::Value& element : value)
            Element::put(encoder, element, what);
    }
    static void get(Decoder& decoder, Value& value)
    {
        for (typename Element::Value& element : value)
            Element::get(decoder, element);
    }
};

// The reply of an operation that raises exceptions begins with the number of the one that was thrown, counted
// from 1 in the order of the interface file.

const DDS::ULong nothing_raised = 0;

template <class ExceptionCodec>
void put_raised(Encoder& reply, DDS::ULong number, const typename ExceptionCodec::Value& exception)
{
    reply.put(number);
    ExceptionCodec::put(reply, exception, exception.what());
}

inline DDS::ULong raised(Decoder& reply)
{
    DDS::ULong number = nothing_raised;
    reply.get(number);
    return number;
}

/// Throws the exception of the reply, in a RaisedException.
template <class ExceptionCodec>
[[noreturn]] void rethrow(Decoder& reply)
{
    typename ExceptionCodec::Value exception;
    ExceptionCodec::get(reply, exception);
    reply.finish();
    throw RaisedException(std::make_exception_ptr(exception));
}

} // namespace codec
} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
