// SPDX-License-Identifier: Apache-2.0
#include "dds/path_name.h"

#include <algorithm>
#include <atomic>

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::size_t longest_name = 80;

} // namespace

std::string make_path_name(const Entity& participant)
{
    static std::atomic<unsigned> last_number{0};
    constexpr char digits[] = "0123456789abcdef";

    dds_guid_t guid{};
    check(dds_get_guid(participant.get(), &guid), "cannot read the participant's GUID");
    std::string name;
    for (const unsigned byte : guid.v) {
        name += digits[byte >> 4U];
        name += digits[byte & 0xfU];
    }
    return name + '-' + std::to_string(++last_number);
}

bool is_path_name(std::string_view name)
{
    const auto is_path_character = [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
               character == '-';
    };
    return !name.empty() && name.size() <= longest_name &&
           std::all_of(name.begin(), name.end(), is_path_character);
}

} // namespace org::opensplice::DDS_RMI
