// SPDX-License-Identifier: Apache-2.0
// What the network may bring to generated code in the place of requests and replies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "composed_InterfaceInfo.h"
#include "composed_InterfaceProxy.h"
#include "composed_server.h"
#include "ddsrmi/codecs.h"

namespace {

using namespace DDS_RMI::Composed;
using testing::ElementsAre;
namespace rmi = org::opensplice::DDS_RMI;
using Bytes = std::vector<DDS::Octet>;

template <class Codec>
Bytes encoded(const typename Codec::Value& value)
{
    rmi::Encoder encoder;
    Codec::put(encoder, value, "the value");
    return encoder.release();
}

template <class Codec>
typename Codec::Value decoded(Bytes bytes)
{
    rmi::Decoder decoder(bytes.data(), bytes.size());
    typename Codec::Value value{};
    Codec::get(decoder, value);
    decoder.finish();
    return value;
}

std::size_t index_of(const std::string& operation)
{
    const rmi::InterfaceInfo& info = Station_interface_info();
    for (std::size_t i = 0; i < info.operation_count; ++i)
        if (info.operations[i].name == operation)
            return i;
    throw std::out_of_range(operation);
}

/// What a server answers to a request that the network brought.
Bytes run(const std::string& operation, Bytes request)
{
    rmi::Decoder arguments(request.data(), request.size());
    rmi::Encoder reply;
    composed::StationServer()._dispatch(index_of(operation), arguments, reply);
    return reply.release();
}

template <class Handler>
void receive(Handler& handler, Bytes reply)
{
    rmi::EncodedResult result{reply.data(), reply.size()};
    DDS::ReadCondition condition(&result);
    handler.handleReply(&condition);
}

class EverythingHandler : public Station_echo_everything_Reply_Handler
{
public:
    std::vector<Everything> replies;
    void echo_everything_Reply(const Everything& given) override { replies.push_back(given); }
};

class RaisingHandler : public Station_raising_Reply_Handler
{
public:
    std::vector<DDS::Long> replies;
    void raising_Reply(DDS::Long given, DDS::String /*text*/) override { replies.push_back(given); }
};

Everything something()
{
    Everything all;
    all.a_text = "text";
    all.some_points.resize(3);
    all.some_words = {"a", "four"};
    all.rows = {{1, 2}, {}, {3}};
    all.a_grid[1][2] = 12;
    return all;
}

constexpr DDS::Octet ff = 0xff;

TEST(EncodedStruct, is_its_members_one_behind_the_other)
{
    Point point;
    point.x = 1;
    point.y = -1;

    EXPECT_THAT(encoded<Point_Codec>(point), ElementsAre(1, 0, 0, 0, ff, ff, ff, ff));
}

TEST(EncodedStruct, comes_back_with_all_its_members)
{
    const Bytes bytes = encoded<Everything_Codec>(something());

    const Everything back = decoded<Everything_Codec>(bytes);
    EXPECT_EQ(encoded<Everything_Codec>(back), bytes);
    EXPECT_EQ(back.a_text, "text");
    EXPECT_THAT(back.some_words, ElementsAre("a", "four"));
    EXPECT_THAT(back.rows, ElementsAre(ElementsAre(1, 2), ElementsAre(), ElementsAre(3)));
    EXPECT_EQ(back.a_grid[1][2], 12);
}

TEST(TruncatedStruct, is_refused_wherever_it_ends_in_requests_and_replies)
{
    const Bytes whole = encoded<Everything_Codec>(something());
    ASSERT_EQ(run("echo_everything", whole), whole);

    EverythingHandler handler;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THROW(run("echo_everything", part), rmi::DecodingError) << size;
        EXPECT_THROW(receive(handler, part), rmi::DecodingError) << size;
    }
    EXPECT_TRUE(handler.replies.empty());
    receive(handler, whole);
    EXPECT_EQ(handler.replies.size(), 1U);
}

TEST(OverlongStruct, is_refused)
{
    Bytes bytes = encoded<Everything_Codec>(something());
    bytes.push_back(0);
    EverythingHandler handler;

    EXPECT_THROW(run("echo_everything", bytes), rmi::DecodingError);
    EXPECT_THROW(receive(handler, bytes), rmi::DecodingError);
}

using rmi::codec::Number;
using rmi::codec::Sequence;
using rmi::codec::Text;

TEST(EncodedSequence, is_the_count_of_its_elements_and_the_elements)
{
    EXPECT_THAT((encoded<Sequence<Number<DDS::Short>, 0>>({1, -1})), ElementsAre(2, 0, 0, 0, 1, 0, ff, ff));
}

// Were its memory taken before its bytes are looked for, this would need some gigabytes.
TEST(SequenceOfFalseCount, is_refused_before_it_takes_memory)
{
    EXPECT_THROW((decoded<Sequence<Number<DDS::Octet>, 0>>({ff, ff, ff, ff, 1, 2})), rmi::DecodingError);
    EXPECT_THROW((decoded<Sequence<Number<DDS::Octet>, 0>>({3, 0, 0, 0, 1, 2})), rmi::DecodingError);
    EXPECT_THROW((decoded<Sequence<Number<DDS::Long>, 0>>({2, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7})),
                 rmi::DecodingError);
    EXPECT_THROW((decoded<Sequence<Everything_Codec, 0>>({ff, ff, ff, 0x7f, 0, 0, 0, 0})),
                 rmi::DecodingError);
    EXPECT_THROW(run("echo_longs", {ff, ff, ff, ff}), rmi::DecodingError);
    EXPECT_THROW((decoded<Sequence<Sequence<Text<0>, 0>, 0>>({1, 0, 0, 0, ff, ff, ff, ff})),
                 rmi::DecodingError);
}

TEST(SequenceOverItsBound, is_refused)
{
    EXPECT_THAT(run("echo_few", {4, 0, 0, 0, 1, 2, 3, 4}), ElementsAre(4, 0, 0, 0, 1, 2, 3, 4));
    EXPECT_THROW(run("echo_few", {5, 0, 0, 0, 1, 2, 3, 4, 5}), rmi::DecodingError);
}

TEST(EnumOutOfRange, is_refused)
{
    EXPECT_THAT(run("echo_mode", {2, 0, 0, 0}), ElementsAre(2, 0, 0, 0));
    EXPECT_THROW(run("echo_mode", {3, 0, 0, 0}), rmi::DecodingError);
    EXPECT_THROW(run("echo_mode", {ff, ff, ff, ff}), rmi::DecodingError);
    EXPECT_THROW(run("echo_mode", {0, 0, 0}), rmi::DecodingError);
}

TEST(TextOverItsBound, is_refused)
{
    const Bytes eight{9, 0, 0, 0, '1', '2', '3', '4', '5', '6', '7', '8', 0};
    const Bytes nine{10, 0, 0, 0, '1', '2', '3', '4', '5', '6', '7', '8', '9', 0};

    EXPECT_EQ(run("echo_label", eight), eight);
    EXPECT_THROW(run("echo_label", nine), rmi::DecodingError);
    EXPECT_THROW((decoded<Text<8>>(nine)), rmi::DecodingError);
}

TEST(ReplyWithAnException, begins_with_its_number)
{
    EXPECT_THAT(run("raising", {2, 0, 0, 0, 1, 0, 0, 0, 0}), ElementsAre(1, 0, 0, 0));
    EXPECT_EQ(run("raising", {9, 0, 0, 0, 1, 0, 0, 0, 0}),
              (Bytes{0, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0, 0, 'r', 'e', 'p', 'l', 'a', 'c', 'e', 'd', 0}));
}

TEST(ReplyWithAnException, is_refused_when_it_is_none_that_the_operation_raises)
{
    RaisingHandler handler;

    EXPECT_THROW(receive(handler, {3, 0, 0, 0}), rmi::DecodingError) << "no such number";
    EXPECT_THROW(receive(handler, {ff, ff, ff, ff}), rmi::DecodingError) << "no such number";
    EXPECT_THROW(receive(handler, {2, 0, 0, 0, 1, 0}), rmi::DecodingError) << "cut short";
    EXPECT_THROW(receive(handler, {1, 0, 0, 0, 0}), rmi::DecodingError) << "too long";
    EXPECT_THROW(receive(handler, {}), rmi::DecodingError);
    EXPECT_TRUE(handler.replies.empty());
    EXPECT_THROW(receive(handler, {1, 0, 0, 0}), rmi::RaisedException);
}

template <class Codec>
std::string refusal_of(const typename Codec::Value& value)
{
    try {
        encoded<Codec>(value);
    } catch (const rmi::BAD_PARAM& error) {
        return error.what();
    }
    return "";
}

TEST(ValueOfNoSuchType, is_refused_with_the_name_of_what_it_was_given_for)
{
    EXPECT_EQ(refusal_of<Text<3>>("four"), "the value: 4 characters, where 3 are allowed");
    EXPECT_EQ(refusal_of<Text<0>>(std::string("a\0b", 3)), "the value: a text cannot have a NUL inside");
    EXPECT_EQ((refusal_of<Sequence<Number<DDS::Octet>, 2>>({1, 2, 3})),
              "the value: 3 elements, where 2 are allowed");
    Everything all;
    all.a_label = "something";
    EXPECT_EQ(refusal_of<Everything_Codec>(all),
              "member 'a_label' of Composed::Everything: 9 characters, where 8 are allowed");
    all.a_label.clear();
    all.a_mode = static_cast<Mode>(3);
    EXPECT_EQ(refusal_of<Everything_Codec>(all),
              "member 'a_mode' of Composed::Everything: its enum has no such value");
}

} // namespace
