// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_TEXTS_MAC_ADDRESS_H
#define SERVER_TEXTS_MAC_ADDRESS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace varnel {

/// The 48-bit address of a node.
class MacAddress
{
public:
    /// Reads six pairs of hexadecimal digits in either case: "00:1A:2b:3C:4D:5E", "00-1A-2B-3C-4D-5E" or
    /// "001A2B3C4D5E". Nothing for any other text, and for the all-zero and the broadcast address, which no
    /// node can have.
    static std::optional<MacAddress> parse(std::string_view text);

    /// In upper case, with colons.
    std::string text() const;

    friend bool operator<(MacAddress left, MacAddress right) { return left.m_bits < right.m_bits; }
    friend bool operator==(MacAddress left, MacAddress right) { return left.m_bits == right.m_bits; }

private:
    explicit MacAddress(std::uint64_t bits) : m_bits(bits) {}

    std::uint64_t m_bits;
};

} // namespace varnel

#endif
