// SPDX-License-Identifier: Apache-2.0
// Structs, sequences, out-arguments, exceptions and what else interfaces are made of, there and back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "composed_InterfaceProxy.h"
#include "ddsrmi/call_failure.h"
#include "probe_client.h"

namespace {

using namespace DDS_RMI::Composed;
using probe::Outcome;
using probe::taken;
using probe::text;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace rmi = org::opensplice::DDS_RMI;

auto members(const Point& point)
{
    return std::tie(point.x, point.y);
}

auto members(const Everything& all)
{
    return std::tie(all.a_boolean, all.a_char, all.an_octet, all.a_short, all.a_ushort, all.a_long,
                    all.a_ulong, all.a_longlong, all.a_ulonglong, all.a_float, all.a_double, all.a_text,
                    all.a_label, all.a_mode, all.a_point, all.some_longs, all.some_booleans, all.some_points,
                    all.some_words, all.rows, all.a_grid, all.two_texts, all.corners);
}

Point point(DDS::Long x, DDS::Long y)
{
    Point made;
    made.x = x;
    made.y = y;
    return made;
}

Everything something()
{
    Everything all;
    all.a_boolean = 1;
    all.a_char = 'c';
    all.an_octet = 255;
    all.a_short = -2;
    all.a_ushort = 65535;
    all.a_long = std::numeric_limits<DDS::Long>::min();
    all.a_ulong = 4294967295U;
    all.a_longlong = std::numeric_limits<DDS::LongLong>::min();
    all.a_ulonglong = std::numeric_limits<DDS::ULongLong>::max();
    all.a_float = 0.5F;
    all.a_double = -0.25;
    all.a_text = "text";
    all.a_label = "12345678";
    all.a_mode = cooling;
    all.a_point = point(1, 2);
    all.some_longs = {3, 4};
    all.some_booleans = {1, 0, 1};
    all.some_points = {point(5, 6), point(7, 8), point(9, 10)};
    all.some_words = {"", "four"};
    all.rows = {{1}, {}, {2, 3}};
    all.a_grid = {{{{1, 2, 3}}, {{4, 5, 6}}}};
    all.two_texts = {{"one", std::string(100'000, 'x')}};
    all.corners = {{point(11, 12), point(13, 14)}};
    return all;
}

} // namespace

namespace DDS_RMI {
namespace Composed {

// Found by the templates that compare.
bool operator==(const Point& first, const Point& second)
{
    return members(first) == members(second);
}
bool operator==(const Everything& first, const Everything& second)
{
    return members(first) == members(second);
}

} // namespace Composed
} // namespace DDS_RMI

namespace {

class StationCall : public probe::Client
{
protected:
    rmi::shared_ptr<StationInterfaceProxy> proxy = proxy_of<StationInterfaceProxy>("station");
};

class EverythingHandler : public Station_echo_everything_Reply_Handler
{
public:
    Outcome<Everything> outcome;
    void echo_everything_Reply(const Everything& given) override { outcome.set(given); }
};

TEST_F(StationCall, brings_a_struct_of_everything_there_and_back)
{
    EXPECT_TRUE(proxy->echo_everything(something()) == something());
    EXPECT_TRUE(proxy->echo_everything(Everything()) == Everything());

    const rmi::shared_ptr<EverythingHandler> handler(new EverythingHandler);
    proxy->async_echo_everything(something(), handler.get());
    EXPECT_TRUE(handler->outcome.get() == something());
}

TEST_F(StationCall, brings_enums_sequences_arrays_and_bounded_texts_there_and_back)
{
    const Longs many(100'000, -1);
    const Grid grid{{{{1, 2, 3}}, {{4, 5, 6}}}};

    EXPECT_EQ(proxy->echo_mode(heating), heating);
    EXPECT_EQ(proxy->echo_longs(many), many);
    EXPECT_THAT(proxy->echo_longs({}), IsEmpty());
    EXPECT_THAT(proxy->echo_few({1, 2, 3, 4}), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(proxy->echo_grid(grid), grid);
    EXPECT_EQ(taken(proxy->echo_label(text("12345678"))), "12345678");
    EXPECT_TRUE(proxy->echo_point(point(1, 2)) == point(1, 2));
}

TEST_F(StationCall, gives_what_the_out_arguments_bring)
{
    DDS::Long first = 0;
    DDS::Double second = 0;
    EXPECT_EQ(proxy->number_out(7, first, second), 7);
    EXPECT_EQ(first, 8);
    EXPECT_EQ(second, 7.5);

    DDS::String one = nullptr;
    DDS::String two = nullptr;
    proxy->text_out(text("text"), one, two);
    EXPECT_EQ(taken(one), "first text");
    EXPECT_EQ(taken(two), "second");
}

class NumberOutHandler : public Station_number_out_Reply_Handler
{
public:
    Outcome<std::tuple<DDS::Long, DDS::Long, DDS::Double>> outcome;
    void number_out_Reply(DDS::Long given, DDS::Long first, DDS::Double second) override
    {
        outcome.set(std::make_tuple(given, first, second));
    }
};

class TextOutHandler : public Station_text_out_Reply_Handler
{
public:
    Outcome<std::string> outcome;
    void text_out_Reply(DDS::String first, DDS::String second) override
    {
        outcome.set(std::string(first) + ", " + second);
    }
};

TEST_F(StationCall, gives_the_hook_the_out_arguments_behind_the_result)
{
    const rmi::shared_ptr<NumberOutHandler> numbers(new NumberOutHandler);
    proxy->async_number_out(7, numbers.get());
    EXPECT_EQ(numbers->outcome.get(), std::make_tuple(7, 8, 7.5));

    const rmi::shared_ptr<TextOutHandler> texts(new TextOutHandler);
    proxy->async_text_out(text("text"), texts.get());
    EXPECT_EQ(texts->outcome.get(), "first text, second");
}

/// What goes both ways.
struct Luggage
{
    DDS::Boolean truth = 1;
    DDS::Long number = 41;
    std::string words = "words";
    std::string name = "name";
    Mode place = off;
    Point where = point(5, 6);
    Longs values{1, 2, 3};
    Grid cells{{{{7, 0, 0}}, {{0, 0, 0}}}};
};

void expect_changed(const Luggage& luggage)
{
    EXPECT_EQ(luggage.truth, 0);
    EXPECT_EQ(luggage.number, 42);
    EXPECT_EQ(luggage.words, "words and more");
    EXPECT_EQ(luggage.name, "new");
    EXPECT_EQ(luggage.place, cooling);
    EXPECT_TRUE(luggage.where == point(5, 5));
    EXPECT_THAT(luggage.values, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(luggage.cells[1][2], 7);
}

class BothWaysHandler : public Station_both_ways_Reply_Handler
{
public:
    Outcome<Luggage> outcome;
    void both_ways_Reply(DDS::Boolean truth, DDS::Long number, DDS::String words, DDS::String name,
                         Mode place, const Point& where, const Longs& values, const Grid& cells) override
    {
        outcome.set(Luggage{truth, number, words, name, place, where, values, cells});
    }
};

TEST_F(StationCall, puts_other_values_in_place_of_what_goes_both_ways)
{
    Luggage luggage;
    DDS::String words = text(luggage.words);
    DDS::String name = text(luggage.name);

    proxy->both_ways(luggage.truth, luggage.number, words, name, luggage.place, luggage.where, luggage.values,
                     luggage.cells);

    luggage.words = taken(words);
    luggage.name = taken(name);
    expect_changed(luggage);
}

TEST_F(StationCall, gives_the_hook_the_other_values_of_what_goes_both_ways)
{
    const Luggage luggage;
    const rmi::shared_ptr<BothWaysHandler> handler(new BothWaysHandler);

    proxy->async_both_ways(luggage.truth, luggage.number, text(luggage.words), text(luggage.name),
                           luggage.place, luggage.where, luggage.values, luggage.cells, handler.get());

    expect_changed(handler->outcome.get());
}

class MixedHandler : public Station_mixed_Reply_Handler
{
public:
    Outcome<std::tuple<Point, Longs, Everything, Mode>> outcome;
    void mixed_Reply(const Point& given, const Longs& lengths, const Everything& all, Mode place) override
    {
        outcome.set(std::make_tuple(given, lengths, all, place));
    }
};

TEST_F(StationCall, brings_arguments_of_all_directions_each_to_its_place)
{
    Longs lengths{9, 9};
    Everything all = something();
    Mode place = off;
    EXPECT_TRUE(proxy->mixed(text(" more"), lengths, all, point(1, 2), place) == point(1, 2));
    EXPECT_THAT(lengths, ElementsAre(5));
    EXPECT_EQ(all.a_text, "text more");
    EXPECT_EQ(place, heating);

    const rmi::shared_ptr<MixedHandler> handler(new MixedHandler);
    proxy->async_mixed(text(" more"), something(), point(1, 2), handler.get());
    EXPECT_TRUE(handler->outcome.get() == std::make_tuple(point(1, 2), lengths, all, heating));
}

TEST_F(StationCall, brings_texts_that_the_implementation_leaves_alone)
{
    DDS::String words = text("as it was");
    DDS::String nothing = nullptr;

    proxy->left_alone(words, nothing);

    EXPECT_EQ(taken(words), "as it was");
    EXPECT_EQ(taken(nothing), "");
}

/// What an exception of that type says, which the call throws.
template <class Error, class Call>
std::string text_of(Call call)
{
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing";
}

TEST_F(StationCall, refuses_arguments_that_are_not_of_their_types_and_names_them)
{
    Everything all;
    all.some_words = {"overlong"};

    EXPECT_EQ(text_of<rmi::BAD_PARAM>([&] { proxy->echo_label(text("123456789")); }),
              "argument 'value': 9 characters, where 8 are allowed");
    EXPECT_EQ(text_of<rmi::BAD_PARAM>([&] {
                  proxy->echo_few({1, 2, 3, 4, 5});
              }),
              "argument 'value': 5 elements, where 4 are allowed");
    EXPECT_EQ(text_of<rmi::BAD_PARAM>([&] { proxy->echo_mode(static_cast<Mode>(3)); }),
              "argument 'value': its enum has no such value");
    EXPECT_EQ(text_of<rmi::BAD_PARAM>([&] { proxy->async_echo_everything(all, new EverythingHandler); }),
              "member 'some_words' of Composed::Everything: 8 characters, where 4 are allowed");
}

TEST_F(StationCall, fails_when_the_implementation_gives_what_is_not_of_the_type)
{
    Few few;
    Everything all;

    EXPECT_EQ(taken(proxy->overlong_label(8)), "xxxxxxxx");
    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->overlong_label(9); }),
                HasSubstr("the result: 9 characters, where 8 are allowed"));
    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->overlong_few(few); }),
                HasSubstr("argument 'values': 5 elements, where 4 are allowed"));
    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->no_mode(); }),
                HasSubstr("the result: its enum has no such value"));
    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->point_with_nul(all); }),
                HasSubstr("member 'a_text' of Composed::Everything: a text cannot have a NUL inside"));
}

TEST_F(StationCall, throws_the_exception_that_the_implementation_threw)
{
    DDS::String words = text("words");
    try {
        proxy->raising(1, words);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Refused& refused) {
        EXPECT_EQ(refused.reason, "not now");
        EXPECT_EQ(refused.code, 1);
        EXPECT_EQ(refused.in_mode, cooling);
        EXPECT_EQ(refused.points.size(), 2U);
        EXPECT_STREQ(refused.what(), "Composed::Refused");
    }
    EXPECT_THROW(proxy->raising(2, words), Closed);
    EXPECT_STREQ(words, "words") << "a text that goes both ways stays the caller's when the call throws";

    EXPECT_EQ(proxy->raising(0, words), 0);
    EXPECT_EQ(taken(words), "replaced");
}

TEST_F(StationCall, fails_for_exceptions_that_the_operation_does_not_raise)
{
    DDS::String words = text("words");

    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->raising(3, words); }),
                HasSubstr("Composed::Misnamed"));
    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->raising(4, words); }), HasSubstr("out of order"));
    EXPECT_EQ(taken(words), "words");
}

TEST_F(StationCall, fails_when_the_exception_has_a_member_that_is_not_of_its_type)
{
    EXPECT_THROW(proxy->raising_misnamed(8), Misnamed);
    EXPECT_THAT(text_of<rmi::INTERNAL_ERROR>([&] { proxy->raising_misnamed(9); }),
                HasSubstr("member 'name' of Composed::Misnamed: 9 characters, where 8 are allowed"));
}

class RaisingHandler : public Station_raising_Reply_Handler, public rmi::CallFailureHandler
{
public:
    Outcome<std::string> outcome;

    void raising_Reply(DDS::Long given, DDS::String words) override
    {
        outcome.set("replied " + std::to_string(given) + ' ' + words);
    }
    void handleFailure(rmi::CallFailure reason, const char* why) override
    {
        if (reason != rmi::CallFailure::exception_raised) {
            outcome.set("failed: " + std::string(why));
            return;
        }
        try {
            throw;
        } catch (const Refused& refused) {
            outcome.set("refused: " + refused.reason + ' ' + std::to_string(refused.code) + ' ' + why);
        } catch (const Closed&) {
            outcome.set("closed " + std::string(why));
        }
    }
};

TEST_F(StationCall, tells_a_failure_handler_of_the_exception_that_the_implementation_threw)
{
    const auto outcome_of = [this](DDS::Long which) {
        const rmi::shared_ptr<RaisingHandler> handler(new RaisingHandler);
        proxy->async_raising(which, text("words"), handler.get());
        return handler->outcome.get();
    };

    EXPECT_EQ(outcome_of(0), "replied 0 replaced");
    EXPECT_EQ(outcome_of(1), "refused: not now 1 Composed::Refused");
    EXPECT_EQ(outcome_of(2), "closed Composed::Closed");
    EXPECT_THAT(outcome_of(3),
                HasSubstr("failed: the implementation of 'raising' failed: Composed::Misnamed"));
    EXPECT_EQ(outcome_of(0), "replied 0 replaced");
}

class UnawareHandler : public Station_raising_Reply_Handler
{
    void raising_Reply(DDS::Long /*given*/, DDS::String /*words*/) override {}
};

TEST_F(StationCall, says_on_standard_error_that_an_exception_came_to_a_handler_of_none)
{
    testing::internal::CaptureStderr();
    proxy->async_raising(2, text(""), new UnawareHandler);
    proxy->echo_mode(off); // replies come in order
    proxy.reset();

    EXPECT_THAT(
        testing::internal::GetCapturedStderr(),
        HasSubstr("have no handler of exceptions for 1 requests to service 'station': the implementation "
                  "raised one"));
}

class ThrowingHook : public Station_raising_Reply_Handler, public rmi::CallFailureHandler
{
public:
    Outcome<bool> replied;

    void raising_Reply(DDS::Long /*given*/, DDS::String /*words*/) override
    {
        replied.set(true);
        throw Closed();
    }
    void handleFailure(rmi::CallFailure /*reason*/, const char* /*why*/) override
    {
        ADD_FAILURE() << "a call that was replied to ended twice";
    }
};

TEST_F(StationCall, ends_once_when_its_reply_hook_throws_an_exception_of_the_interface)
{
    const rmi::shared_ptr<ThrowingHook> handler(new ThrowingHook);
    proxy->async_raising(0, text(""), handler.get());

    EXPECT_TRUE(handler->replied.get());
    EXPECT_EQ(proxy->echo_mode(heating), heating) << "replies come in order, so the hook has ended";
}

TEST_F(StationCall, of_a_oneway_operation_is_run_in_its_turn)
{
    for (DDS::Long i = 0; i < 3; ++i)
        proxy->note(text("note"), point(i, 0));
    proxy->fail();
    proxy->note(text("last"), point(3, 0));

    EXPECT_EQ(taken(proxy->noted()), "note 0;note 1;note 2;last 3;");
}

// More than the server grants at first: what is granted comes back with what has been run.
TEST_F(StationCall, of_a_oneway_operation_can_be_made_again_and_again)
{
    constexpr std::size_t calls = 5000;
    for (std::size_t i = 0; i < calls; ++i)
        proxy->note(text(""), point(1, 0));

    EXPECT_EQ(taken(proxy->noted()).size(), calls * std::string(" 1;").size());
}

using OtherCall = probe::Client;

TEST_F(OtherCall, works_with_arguments_and_members_that_have_the_names_of_constants)
{
    const auto proxy = proxy_of<NamesInterfaceProxy>("other names");
    DDS::Long second = 0;
    DDS::Long third = 7;
    DDS::String name = nullptr;

    EXPECT_EQ(proxy->sum(5, second, third, name, text("text"), 0), 5);
    EXPECT_EQ(second, 6);
    EXPECT_EQ(third, 8);
    EXPECT_EQ(taken(name), "text");
    EXPECT_EQ(proxy->limit(1, 2), 12);
    try {
        proxy->sum(5, second, third, name, text("text"), 3);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Named& named) {
        EXPECT_EQ(named.code, 3);
        EXPECT_EQ(named.code_value, 5);
    }
}

TEST_F(OtherCall, brings_types_of_an_outer_module)
{
    const auto proxy = proxy_of<Inner::SwapperInterfaceProxy>("swapper");
    Inner::Pair pair;
    pair.first = point(1, 2);
    pair.second = point(3, 4);

    const std::vector<Inner::Pair> swapped = proxy->swapped({pair});

    ASSERT_EQ(swapped.size(), 1U);
    EXPECT_TRUE(swapped[0].first == point(3, 4));
    EXPECT_TRUE(swapped[0].second == point(1, 2));
}

TEST(Constants, have_the_values_of_the_interface_file)
{
    EXPECT_EQ(least, -2147483647);
    EXPECT_EQ(most, 18446744073709551615ULL);
    EXPECT_EQ(mask, 0xf0);
    EXPECT_EQ(on, 1);
    EXPECT_EQ(letter, '\'');
    EXPECT_EQ(half, 0.5F);
    EXPECT_EQ(tiny, 1e-300);
    EXPECT_STREQ(greeting, "say \"hi\"\t\\ ?\?/ \xe4");
    EXPECT_EQ(most_words, 2);
    EXPECT_EQ(usual, heating);
}

} // namespace
