// SPDX-License-Identifier: Apache-2.0
#include "contract/reply.h"

#include <algorithm>

namespace varnel {

const std::vector<FailureInfo>& failures()
{
    static const std::vector<FailureInfo> table = {
        {Failure::malformed_address, "malformed_address", "an address is no MAC address"},
        {Failure::unknown_node, "unknown_node", "the network has no node of that address"},
        {Failure::node_exists, "node_exists", "the network has a node of that address already"},
        {Failure::not_commissioned, "not_commissioned", "the network is not commissioned"},
        {Failure::already_commissioned, "already_commissioned", "the network is commissioned already"},
        {Failure::malformed_text, "malformed_text", "the text does not consist of key=value pairs"},
        {Failure::text_too_long, "text_too_long", "the text is longer than its limit"},
        {Failure::empty_list, "empty_list", "the list holds no address"},
        {Failure::too_many_nodes, "too_many_nodes", "the network would exceed its number of nodes"},
        {Failure::bad_duration, "bad_duration", "the duration is out of range"},
        {Failure::bad_type, "bad_type", "the type code is out of range"},
        {Failure::not_a_test_node, "not_a_test_node", "only test nodes can be given sensor data"},
        {Failure::internal_error, "internal_error",
         "the server itself failed, for example for want of memory"},
    };
    return table;
}

std::string failure_name(int value)
{
    const auto found = std::find_if(failures().begin(), failures().end(), [value](const FailureInfo& info) {
        return static_cast<int>(info.failure) == value;
    });
    return found == failures().end() ? "" : found->name;
}

const char* Refusal::what() const noexcept
{
    return "operation refused";
}

} // namespace varnel
