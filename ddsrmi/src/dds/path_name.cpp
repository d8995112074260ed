// SPDX-License-Identifier: Apache-2.0
#include "dds/path_name.h"

#include <algorithm>
#include <atomic>

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::size_t most_digits = 10;

std::string name_beginning(const dds_guid_t& participant)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string name;
    for (const unsigned byte : participant.v) {
        name += digits[byte >> 4U];
        name += digits[byte & 0xfU];
    }
    return name + '-';
}

} // namespace

std::string make_path_name(const Entity& participant)
{
    static std::atomic<unsigned> last_number{0};
    dds_guid_t guid{};
    check(dds_get_guid(participant.get(), &guid), "cannot read the participant's GUID");
    return name_beginning(guid) + std::to_string(++last_number);
}

bool is_path_name(std::string_view name, const dds_guid_t& participant)
{
    const std::string beginning = name_beginning(participant);
    if (name.substr(0, beginning.size()) != beginning)
        return false;
    name.remove_prefix(beginning.size());
    return !name.empty() && name.size() <= most_digits &&
           std::all_of(name.begin(), name.end(), [](char one) { return one >= '0' && one <= '9'; });
}

} // namespace org::opensplice::DDS_RMI
