// SPDX-License-Identifier: Apache-2.0
#include "json/json_text_check.h"

#include <charconv>
#include <cstdint>

#include "json/utf8.h"

namespace zorbd {
namespace {

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// One pass over the tokens of a text.
class TokenCheck
{
public:
    explicit TokenCheck(std::string_view text) : m_text(text) {}

    void run()
    {
        while (m_at < m_text.size())
            check_token();
    }

private:
    void check_token()
    {
        const char c = m_text[m_at];
        if (c == '"')
            check_string();
        else if (c == '-' || is_digit(c))
            check_number();
        else if (c == 'N' || c == 'I' || c == '\0')
            fail("unexpected character");
        else
            ++m_at;
    }

    void check_string()
    {
        const std::size_t start = ++m_at;
        bool has_nul = false;
        while (m_at < m_text.size() && m_text[m_at] != '"')
            has_nul |= check_character();
        const std::size_t end = m_at;
        ++m_at; // the closing quote
        if (has_nul && is_member_name())
            throw JsonSyntaxError("NUL character in a member name", start);
        if (const auto bad = find_invalid_utf8(m_text.substr(start, end - start)))
            throw JsonSyntaxError("invalid UTF-8", start + *bad);
    }

    /// Passes one character or one escape of a string, and says whether it is an escaped NUL.
    bool check_character()
    {
        if (static_cast<unsigned char>(m_text[m_at]) < 0x20)
            fail("control character in a string");
        if (m_text[m_at] != '\\') {
            ++m_at;
            return false;
        }
        const bool is_nul = m_text.substr(m_at, 6) == "\\u0000";
        m_at += 2; // an escaped quote does not end the string
        return is_nul;
    }

    bool is_member_name() const
    {
        std::size_t next = m_at;
        while (next < m_text.size() && is_blank(m_text[next]))
            ++next;
        return next < m_text.size() && m_text[next] == ':';
    }

    void check_number()
    {
        const std::size_t start = m_at;
        pass('-');
        if (!pass('0'))
            pass_digits();
        const std::size_t integer_end = m_at;
        if (pass('.'))
            pass_digits();
        if (pass('e') || pass('E')) {
            if (!pass('+'))
                pass('-');
            pass_digits();
        }
        if (m_at < m_text.size() && is_digit(m_text[m_at]))
            fail("number with a leading zero");
        if (m_at == integer_end)
            check_range(m_text.substr(start, m_at - start), start);
    }

    bool pass(char c)
    {
        if (m_at == m_text.size() || m_text[m_at] != c)
            return false;
        ++m_at;
        return true;
    }

    void pass_digits()
    {
        if (m_at == m_text.size() || !is_digit(m_text[m_at]))
            fail("digit expected");
        while (m_at < m_text.size() && is_digit(m_text[m_at]))
            ++m_at;
    }

    static void check_range(std::string_view integer, std::size_t offset)
    {
        std::uint64_t magnitude = 0;
        std::int64_t negative = 0;
        const char* end = integer.data() + integer.size();
        const auto result = integer.front() == '-' ? std::from_chars(integer.data(), end, negative)
                                                   : std::from_chars(integer.data(), end, magnitude);
        if (result.ec == std::errc::result_out_of_range)
            throw JsonSyntaxError("integer beyond 64 bits", offset);
    }

    [[noreturn]] void fail(const char* cause) const { throw JsonSyntaxError(cause, m_at); }

    std::string_view m_text;
    std::size_t m_at = 0;
};

} // namespace

JsonSyntaxError::JsonSyntaxError(const std::string& cause, std::size_t offset)
    : std::runtime_error(cause + " at byte " + std::to_string(offset))
{
}

void check_json_tokens(std::string_view text)
{
    TokenCheck(text).run();
}

} // namespace zorbd
