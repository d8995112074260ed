// SPDX-License-Identifier: Apache-2.0
// The pages tell what the program does: neither more nor less.
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "options.h"

namespace {

using testing::HasSubstr;
using testing::IsSubsetOf;

std::string read_file(const std::string& path)
{
    std::ifstream stream(path);
    EXPECT_TRUE(stream) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::set<std::string> options_in(const std::string& text)
{
    const std::regex option("--[a-z][a-z0-9-]+");
    return {std::sregex_token_iterator(text.begin(), text.end(), option), {}};
}

std::set<std::string> known_options()
{
    std::ostringstream help;
    const char* arguments[] = {"zorbd", "--help"};
    zorbd::read_options(2, arguments, help);
    return options_in(help.str());
}

std::string manual()
{
    return std::regex_replace(read_file(MANUAL), std::regex(R"(\\-)"), "-");
}

TEST(pages, manual_has_every_option_and_no_other)
{
    std::set<std::string> told = options_in(manual());
    told.erase("--json"); // of curl

    EXPECT_EQ(told, known_options());
}

TEST(pages, host_page_names_no_option_that_is_unknown)
{
    std::set<std::string> allowed = known_options();
    allowed.insert(
        {"--json", "--unix-socket", "--oauth2-bearer", "--preset", "--build", "--install", "--prefix"});

    EXPECT_THAT(options_in(read_file(HOST_PAGE)), IsSubsetOf(allowed));
}

TEST(pages, manual_has_the_ranges_and_defaults_of_the_help)
{
    std::ostringstream help;
    const char* arguments[] = {"zorbd", "--help"};
    zorbd::read_options(2, arguments, help);
    const std::string text = help.str();
    const std::string told = manual();

    const std::regex numbers(R"((?:NUMBER|SECONDS):(\S+)=(\S+))");
    std::size_t found = 0;
    for (std::sregex_iterator match(text.begin(), text.end(), numbers), end; match != end; ++match, ++found)
        EXPECT_THAT(told, HasSubstr('(' + (*match)[1].str() + "; " + (*match)[2].str() + ')'));
    EXPECT_GE(found, 10U);
}

TEST(pages, host_page_shows_the_example_as_it_is)
{
    const std::string example = read_file(EXAMPLE);

    EXPECT_NE(read_file(HOST_PAGE).find(example.substr(example.find("#include"))), std::string::npos);
}

} // namespace
