// SPDX-License-Identifier: Apache-2.0
// The pages tell what the program does: neither more nor less.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "process/options.h"

namespace {

using testing::HasSubstr;
using testing::IsSubsetOf;

std::string read_file(const std::string& path)
{
    std::ifstream stream(path);
    EXPECT_TRUE(stream) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool is_of_an_option(char c)
{
    return std::islower(static_cast<unsigned char>(c)) != 0 ||
           std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '-';
}

std::set<std::string> options_in(const std::string& text)
{
    std::set<std::string> found;
    for (std::size_t at = text.find("--"); at != std::string::npos; at = text.find("--", at)) {
        const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
        const std::string option(begin, std::find_if_not(begin, text.end(), is_of_an_option));
        if (option.size() > 2 && option[2] != '-') // not the rule of a table
            found.insert(option);
        at += option.size();
    }
    return found;
}

std::string help()
{
    std::ostringstream text;
    const char* arguments[] = {"zorbd", "--help"};
    zorbd::read_options(2, arguments, text);
    return text.str();
}

/// The manual page with its hyphens written as hyphens.
std::string manual()
{
    std::string text = read_file(MANUAL);
    for (std::size_t at = text.find("\\-"); at != std::string::npos; at = text.find("\\-", at))
        text.erase(at, 1);
    return text;
}

TEST(pages, manual_has_every_option_and_no_other)
{
    std::set<std::string> told = options_in(manual());
    told.erase("--json"); // of curl

    EXPECT_EQ(told, options_in(help()));
}

TEST(pages, host_page_names_no_option_that_is_unknown)
{
    std::set<std::string> allowed = options_in(help());
    allowed.insert({"--json", "--wait", "--filter", "--unix-socket", "--oauth2-bearer", "--cacert", "--file",
                    "--methods", "--preset", "--build", "--install", "--prefix", "--now"});

    EXPECT_THAT(options_in(read_file(HOST_PAGE)), IsSubsetOf(allowed));
}

TEST(pages, manual_has_the_ranges_and_defaults_of_the_help)
{
    const std::string told = manual();
    std::istringstream words(help());
    std::size_t found = 0;

    for (std::string word; words >> word;) { // such as NUMBER:1..256=4
        const std::size_t range = word.find(':') + 1;
        const std::size_t value = word.find('=') + 1;
        if (range == 0 || value == 0 || word.find("..") == std::string::npos)
            continue;
        ++found;
        EXPECT_THAT(told,
                    HasSubstr('(' + word.substr(range, value - range - 1) + "; " + word.substr(value) + ')'));
    }

    EXPECT_GE(found, 10U);
}

TEST(pages, host_page_shows_the_application_as_it_is)
{
    EXPECT_THAT(read_file(HOST_PAGE), HasSubstr("```python\n" + read_file(APPLICATION) + "```\n"));
}

TEST(pages, host_page_shows_the_example_as_it_is)
{
    const std::string example = read_file(EXAMPLE);

    EXPECT_NE(read_file(HOST_PAGE).find(example.substr(example.find("#include"))), std::string::npos);
}

} // namespace
