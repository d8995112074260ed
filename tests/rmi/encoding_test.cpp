// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/encoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using org::opensplice::DDS_RMI::Decoder;
using org::opensplice::DDS_RMI::DecodingError;
using org::opensplice::DDS_RMI::Encoder;
using testing::ElementsAre;
using Bytes = std::vector<DDS::Octet>;

template <class Value>
Bytes encoded(Value value)
{
    Encoder encoder;
    encoder.put(value);
    return encoder.release();
}

template <class Value>
Value decoded(Bytes bytes)
{
    Decoder decoder(bytes.data(), bytes.size());
    Value value{};
    decoder.get(value);
    decoder.finish();
    return value;
}

template <class Number>
class EncodedNumber : public testing::Test
{
};
using Numbers = testing::Types<DDS::Octet, DDS::Char, DDS::Short, DDS::UShort, DDS::Long, DDS::ULong,
                               DDS::LongLong, DDS::ULongLong, DDS::Float, DDS::Double>;
struct NumberNames
{
    template <class>
    static std::string GetName(int position)
    {
        constexpr std::array names{"octet", "char",          "short",     "unsigned_short",
                                   "long",  "unsigned_long", "long_long", "unsigned_long_long",
                                   "float", "double"};
        return names.at(static_cast<std::size_t>(position));
    }
};
TYPED_TEST_SUITE(EncodedNumber, Numbers, NumberNames);

TYPED_TEST(EncodedNumber, comes_back_at_its_limits)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam value : {Limits::lowest(), Limits::min(), TypeParam{0}, TypeParam{1}, Limits::max()})
        EXPECT_EQ(decoded<TypeParam>(encoded(value)), value);
}

TYPED_TEST(EncodedNumber, takes_up_its_size)
{
    EXPECT_EQ(encoded(TypeParam{1}).size(), sizeof(TypeParam));
}

TYPED_TEST(EncodedNumber, is_refused_when_a_byte_is_missing)
{
    Bytes bytes = encoded(TypeParam{1});
    bytes.pop_back();
    EXPECT_THROW(decoded<TypeParam>(bytes), DecodingError);
}

TYPED_TEST(EncodedNumber, is_refused_when_something_follows)
{
    Bytes bytes = encoded(TypeParam{1});
    bytes.push_back(0);
    EXPECT_THROW(decoded<TypeParam>(bytes), DecodingError);
}

TEST(EncodedNumbers, have_their_lowest_byte_first)
{
    EXPECT_THAT(encoded(DDS::UShort{0x0102}), ElementsAre(2, 1));
    EXPECT_THAT(encoded(DDS::Long{-2}), ElementsAre(0xfe, 0xff, 0xff, 0xff));
    EXPECT_THAT(encoded(DDS::ULongLong{0x0102030405060708}), ElementsAre(8, 7, 6, 5, 4, 3, 2, 1));
    EXPECT_THAT(encoded(DDS::Float{1}), ElementsAre(0, 0, 0x80, 0x3f));
    EXPECT_THAT(encoded(DDS::Double{-2}), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0xc0));
}

TEST(EncodedNumbers, may_be_infinite_or_none)
{
    EXPECT_EQ(decoded<DDS::Double>(encoded(-std::numeric_limits<DDS::Double>::infinity())),
              -std::numeric_limits<DDS::Double>::infinity());
    EXPECT_TRUE(std::isnan(decoded<DDS::Float>(encoded(std::numeric_limits<DDS::Float>::quiet_NaN()))));
}

TEST(EncodedBoolean, is_one_or_zero)
{
    EXPECT_THAT(encoded(true), ElementsAre(1));
    EXPECT_THAT(encoded(false), ElementsAre(0));
}

std::string decoded_text(Bytes bytes)
{
    Decoder decoder(bytes.data(), bytes.size());
    DDS::String text = nullptr;
    decoder.get(text);
    decoder.finish();
    return text;
}

TEST(EncodedText, is_the_count_of_its_bytes_and_the_bytes)
{
    EXPECT_THAT(encoded("ab"), ElementsAre(3, 0, 0, 0, 'a', 'b', 0));
}

TEST(EncodedText, comes_back_whatever_it_says)
{
    for (const std::string& text :
         {std::string(), std::string("a"), std::string("\xff\x01\n"), std::string(1'000'000, 'x')})
        EXPECT_EQ(decoded_text(encoded(text.c_str())), text);
}

TEST(EncodedText, is_empty_for_null)
{
    EXPECT_EQ(decoded_text(encoded(static_cast<const char*>(nullptr))), "");
}

TEST(EncodedText, is_refused_when_it_is_no_text)
{
    const std::vector<Bytes> no_texts{
        {},                               // not even a count
        {1, 0, 0},                        // half a count
        {0, 0, 0, 0},                     // no room for its NUL
        {1, 0, 0, 0},                     // less than was counted
        {3, 0, 0, 0, 'a', 0},             // again
        {2, 0, 0, 0, 'a', 'b'},           // without NUL
        {2, 0, 0, 0, 'a', 'b', 0},        // NUL behind it
        {1, 0, 0, 0, 0, 'x'},             // more than was counted
        {0xff, 0xff, 0xff, 0xff, 'a', 0}, // a count beyond everything
        {0xff, 0xff, 0xff, 0x7f, 'a', 0},
    };
    for (const Bytes& bytes : no_texts)
        EXPECT_THROW(decoded_text(bytes), DecodingError) << testing::PrintToString(bytes);
}

TEST(EncodedValues, come_back_one_behind_the_other)
{
    Encoder encoder;
    encoder.put(DDS::Octet{7});
    encoder.put("text");
    encoder.put(DDS::Double{0.5});
    Bytes bytes = encoder.release();

    Decoder decoder(bytes.data(), bytes.size());
    DDS::Octet octet{};
    DDS::String text = nullptr;
    DDS::Double real{};
    decoder.get(octet);
    decoder.get(text);
    decoder.get(real);

    EXPECT_NO_THROW(decoder.finish());
    EXPECT_EQ(octet, 7);
    EXPECT_STREQ(text, "text");
    EXPECT_EQ(real, 0.5);
}

TEST(EncodedValues, may_be_none_at_all)
{
    EXPECT_NO_THROW(Decoder(nullptr, 0).finish());
}

} // namespace
