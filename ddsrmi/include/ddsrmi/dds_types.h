// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_TYPES_H
#define DDSRMI_DDS_TYPES_H

namespace DDS {

/// The types of IDL, of the same size on every machine.
/// @{
typedef unsigned char Boolean; ///< 0 or 1
typedef char Char;
typedef unsigned char Octet;
typedef short Short;                  ///< 16 bits
typedef unsigned short UShort;        ///< 16 bits
typedef int Long;                     ///< 32 bits
typedef unsigned int ULong;           ///< 32 bits
typedef long long LongLong;           ///< 64 bits
typedef unsigned long long ULongLong; ///< 64 bits
typedef float Float;                  ///< 32 bits, IEEE 754
typedef double Double;                ///< 64 bits, IEEE 754
/// @}

/// A NUL-terminated text. Who is given one by value in a remote call owns it: the RMI layer frees every
/// in-argument of a proxy call (also when the call throws) and every text that an implementation returns,
/// with string_free. The in-arguments that an implementation receives, and the result that a reply hook
/// receives, stay the RMI layer's and are valid until the function returns.
typedef char* String;

/// Room for a text of `length` characters and its NUL, made with `new[]`; the first character is NUL.
String string_alloc(ULong length);
/// A copy made with `new[]`; null for null.
String string_dup(const char* text);
/// Frees with `delete[]`; null is ignored.
void string_free(String text);

/// Hands one arrived reply to CAsyncReplyHandler::handleReply. It is valid during that call only.
class ReadCondition
{
public:
    /// The sample stays the caller's, and must outlive this.
    explicit ReadCondition(const void* sample);
    virtual ~ReadCondition();
    ReadCondition(const ReadCondition&) = delete;
    ReadCondition& operator=(const ReadCondition&) = delete;

    /// The EncodedResult of encoding.h.
    const void* sample() const { return m_sample; }

private:
    const void* m_sample;
};

/// The condition under which one request's reply is looked for.
class QueryCondition : public ReadCondition
{
public:
    QueryCondition();
    ~QueryCondition() override;
};

} // namespace DDS

#endif
