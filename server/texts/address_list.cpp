// SPDX-License-Identifier: Apache-2.0
#include "texts/address_list.h"

#include <optional>

#include "contract/network_limits.h"
#include "contract/reply.h"
#include "texts/text_split.h"

namespace varnel {

MacAddress parse_address(std::string_view text)
{
    const std::optional<MacAddress> address = MacAddress::parse(text);
    if (!address)
        throw Refusal(Failure::malformed_address);
    return *address;
}

std::set<MacAddress> parse_address_list(std::string_view text)
{
    if (text.size() > limits::address_list_length)
        throw Refusal(Failure::text_too_long);
    std::set<MacAddress> addresses;
    for (const std::string_view part : split(text, ",; \t\r\n"))
        addresses.insert(parse_address(part));
    if (addresses.empty())
        throw Refusal(Failure::empty_list);
    return addresses;
}

} // namespace varnel
