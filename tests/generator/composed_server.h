// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_GENERATOR_COMPOSED_SERVER_H
#define TESTS_GENERATOR_COMPOSED_SERVER_H

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "composed_Interface.h"

namespace composed {

using namespace DDS_RMI::Composed;

/// Puts another text where one is that came as an argument.
inline void replace(DDS::String& text, const std::string& other)
{
    DDS::string_free(text);
    text = DDS::string_dup(other.c_str());
}

class StationServer : public StationInterface
{
public:
    Everything echo_everything(const Everything& given) override { return given; }
    Mode echo_mode(Mode given) override { return given; }
    DDS::String echo_label(DDS::String given) override { return DDS::string_dup(given); }
    Longs echo_longs(const Longs& given) override { return given; }
    Few echo_few(const Few& given) override { return given; }
    Grid echo_grid(const Grid& given) override { return given; }
    Point echo_point(const Point& given) override { return given; }

    DDS::Long number_out(DDS::Long given, DDS::Long& first, DDS::Double& second) override
    {
        first = given + 1;
        second = given + 0.5;
        return given;
    }

    void text_out(DDS::String given, DDS::String& first, DDS::String& second) override
    {
        first = DDS::string_dup((std::string("first ") + given).c_str());
        second = DDS::string_dup("second");
    }

    void both_ways(DDS::Boolean& truth, DDS::Long& number, DDS::String& text, DDS::String& name, Mode& place,
                   Point& where, Longs& values, Grid& cells) override
    {
        truth = truth == 0 ? 1 : 0;
        ++number;
        replace(text, std::string(text) + " and more");
        replace(name, "new");
        place = cooling;
        where.y = where.x;
        values.push_back(DDS::Long{4});
        cells[1][2] = cells[0][0];
    }

    Point mixed(DDS::String text, Longs& lengths, Everything& all, const Point& where, Mode& place) override
    {
        lengths = {static_cast<DDS::Long>(std::string(text).size())};
        all.a_text += text;
        place = heating;
        return where;
    }

    void left_alone(DDS::String& /*text*/, DDS::String& /*nothing*/) override {}

    DDS::String overlong_label(DDS::Long length) override
    {
        return DDS::string_dup(std::string(static_cast<std::size_t>(length), 'x').c_str());
    }
    void overlong_few(Few& values) override { values = {1, 2, 3, 4, 5}; }
    Mode no_mode() override { return static_cast<Mode>(3); }
    Point point_with_nul(Everything& all) override
    {
        all.a_text = std::string("a\0b", 3);
        return {};
    }

    DDS::Long raising(DDS::Long which, DDS::String& text) override
    {
        replace(text, "replaced");
        Point point;
        point.x = which;
        switch (which) {
        case 1:
            throw Refused("not now", which, cooling, {point, point});
        case 2:
            throw Closed();
        case 3:
            throw Misnamed("whoever");
        case 4:
            throw std::runtime_error("out of order");
        default:
            return which;
        }
    }
    void raising_misnamed(DDS::Long length) override
    {
        throw Misnamed(std::string(static_cast<std::size_t>(length), 'x'));
    }

    void note(DDS::String text, const Point& where) override
    {
        m_noted += std::string(text) + ' ' + std::to_string(where.x) + ';';
    }
    void fail() override { throw std::runtime_error("asked for"); }
    DDS::String noted() override { return DDS::string_dup(m_noted.c_str()); }

private:
    std::string m_noted; // the runtime's policy is one thread
};

class NamesServer : public NamesInterface
{
public:
    DDS::Long sum(DDS::Long first, DDS::Long& second, DDS::Long& third, DDS::String& name,
                  DDS::String owned_name, DDS::Long number) override
    {
        if (number != 0)
            throw Named(number, first);
        second = first + 1;
        third += 1;
        name = DDS::string_dup(owned_name);
        return first;
    }
    DDS::Long limit(DDS::Long first, DDS::Long second) override { return 10 * first + second; }
    void request(DDS::Long /*number*/) override {}
};

class SwapperServer : public Inner::SwapperInterface
{
public:
    std::vector<Inner::Pair> swapped(const std::vector<Inner::Pair>& given) override
    {
        std::vector<Inner::Pair> pairs = given;
        for (Inner::Pair& pair : pairs)
            std::swap(pair.first, pair.second);
        return pairs;
    }
};

} // namespace composed

#endif
