// SPDX-License-Identifier: Apache-2.0
#include "http/token_file.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "system/private_file.h"

namespace zorbd {
namespace {

constexpr std::size_t shortest_secret = 16;
constexpr std::size_t longest_secret = 1024;
constexpr std::size_t largest_file = 1U << 20U;
constexpr std::size_t longest_name = 64;
constexpr std::string_view hash_label = "sha256:";
constexpr std::string_view methods_label = "methods=";
constexpr std::string_view until_label = "until=";
constexpr std::time_t day = std::time_t{24} * 60 * 60;

bool begins_with(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

bool is_visible(char c)
{
    return c > ' ' && c < '\x7f';
}

bool is_name_character(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           c == '-' || c == '.';
}

Token single_token(const std::string& secret)
{
    if (secret.size() < shortest_secret || secret.size() > longest_secret)
        throw std::invalid_argument("a token must have " + std::to_string(shortest_secret) + " to " +
                                    std::to_string(longest_secret) + " characters");
    if (!std::all_of(secret.begin(), secret.end(), is_visible))
        throw std::invalid_argument("a token must be one line of visible ASCII characters without blanks");
    Token token;
    token.hash = hash_of(secret);
    return token;
}

unsigned digit_of(char c)
{
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a') + 10U;
    throw std::invalid_argument("the hash must be sha256: and 64 digits of 0-9a-f");
}

TokenHash parse_hash(std::string_view text)
{
    TokenHash hash{};
    if (!begins_with(text, hash_label) || text.size() != hash_label.size() + 2 * hash.size())
        throw std::invalid_argument("the hash must be sha256: and 64 digits of 0-9a-f");
    text.remove_prefix(hash_label.size());
    for (std::size_t i = 0; i < hash.size(); ++i)
        hash[i] = static_cast<unsigned char>(digit_of(text[2 * i]) * 16U + digit_of(text[2 * i + 1]));
    return hash;
}

std::string hash_text(const TokenHash& hash)
{
    constexpr const char* digits = "0123456789abcdef";
    std::string text(hash_label);
    for (const unsigned byte : hash) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xfU];
    }
    return text;
}

Token parse_line(const std::string& line)
{
    std::istringstream words(line);
    Token token;
    std::string hash;
    words >> token.name >> hash;
    require_token_name(token.name);
    token.hash = parse_hash(hash);
    for (std::string word; words >> word;) {
        if (begins_with(word, methods_label))
            token.methods = parse_patterns(word.substr(methods_label.size()));
        else if (begins_with(word, until_label))
            token.end = parse_last_day(word.substr(until_label.size()));
        else
            throw std::invalid_argument("'" + word + "' is neither methods=... nor until=...");
    }
    return token;
}

bool says_something(const std::string& line)
{
    const std::size_t first = line.find_first_not_of(" \t\r");
    return first != std::string::npos && line[first] != '#';
}

std::vector<Token> parse_lines(const std::string& text, const std::string& file)
{
    std::vector<Token> tokens;
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (!says_something(line))
            continue;
        try {
            Token token = parse_line(line);
            if (std::any_of(tokens.begin(), tokens.end(),
                            [&](const Token& other) { return other.name == token.name; }))
                throw std::invalid_argument("there is a token '" + token.name + "' already");
            tokens.push_back(std::move(token));
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error("token file " + file + ", line " + std::to_string(number) + ": " +
                                     error.what());
        }
    }
    return tokens;
}

bool is_single_secret(const std::string& text)
{
    return text.find_first_of(" \n#") == std::string::npos;
}

std::string line_of(const Token& token)
{
    std::string line = token.name + ' ' + hash_text(token.hash) + ' ' + std::string(methods_label);
    for (std::size_t i = 0; i < token.methods.size(); ++i)
        line += (i == 0 ? "" : ",") + token.methods[i];
    if (token.end)
        line += ' ' + std::string(until_label) + last_day_text(*token.end);
    return line + '\n';
}

} // namespace

std::vector<Token> read_token_file(const std::string& file)
{
    std::string text = read_private_file(file, "token file", largest_file);
    const std::string whole = text;
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    if (!is_single_secret(text))
        return parse_lines(whole, file);
    try {
        return {single_token(text)};
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error("token file " + file + ": " + error.what());
    }
}

void write_token_file(const std::string& file, const std::vector<Token>& tokens)
{
    std::string text = "# Tokens of zorbd, one a line; see: zorbd token --help\n";
    for (const Token& token : tokens)
        text += line_of(token);
    replace_private_file(file, text);
}

void require_token_name(const std::string& name)
{
    if (name.empty() || name.size() > longest_name ||
        !std::all_of(name.begin(), name.end(), is_name_character))
        throw std::invalid_argument("a token's name has up to 64 letters, digits and . _ - , not '" + name +
                                    "'");
}

std::vector<std::string> parse_patterns(const std::string& text)
{
    constexpr int most_stars = 3; // more make a comparison long
    std::vector<std::string> patterns;
    std::istringstream words(text);
    for (std::string word; std::getline(words, word, ',');) {
        if (word.empty() || !std::all_of(word.begin(), word.end(), is_visible) ||
            std::count(word.begin(), word.end(), '*') > most_stars)
            throw std::invalid_argument("'" + word + "' is no pattern for methods such as network_get_*");
        patterns.push_back(word);
    }
    if (patterns.empty())
        throw std::invalid_argument("methods must be patterns such as network_get_*, with commas between");
    return patterns;
}

std::time_t parse_last_day(const std::string& text)
{
    std::tm date{};
    const char* const rest = ::strptime(text.c_str(), "%Y-%m-%d", &date);
    if (rest == nullptr || *rest != '\0')
        throw std::invalid_argument("'" + text + "' is no day such as 2027-12-31");
    return ::timegm(&date) + day;
}

std::string last_day_text(std::time_t end)
{
    const std::time_t last = end - day;
    std::tm date{};
    ::gmtime_r(&last, &date);
    char text[16] = "";
    std::strftime(text, sizeof(text), "%Y-%m-%d", &date);
    return text;
}

} // namespace zorbd
