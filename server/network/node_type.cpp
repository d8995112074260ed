// SPDX-License-Identifier: Apache-2.0
#include "network/node_type.h"

#include <cstddef>

#include "contract/network_limits.h"

namespace varnel {

namespace {

const NodeTypeInfo* find_type(int code)
{
    const auto index = static_cast<std::size_t>(code);
    return code >= 0 && index < node_types().size() ? &node_types()[index] : nullptr;
}

} // namespace

const std::vector<NodeTypeInfo>& node_types()
{
    static const std::vector<NodeTypeInfo> table = {
        {0, "generic", "battery=100"},
        {1, "temperature", "temperature=21.5; battery=100"},
        {2, "humidity", "humidity=45; battery=100"},
        {3, "pressure", "pressure=1013.2; battery=100"},
        {4, "light", "light=320; battery=100"},
        {5, "motion", "motion=0; battery=100"},
        {6, "contact", "contact=closed; battery=100"},
        {7, "energy", "power=0; energy=0"},
    };
    return table;
}

bool is_node_type(int code)
{
    return code >= 0 && code <= limits::highest_type;
}

std::string node_type_name(int code)
{
    const NodeTypeInfo* const type = find_type(code);
    return type != nullptr ? type->name : "type " + std::to_string(code);
}

std::string simulated_readings(int code)
{
    const NodeTypeInfo* const type = find_type(code);
    return type != nullptr ? type->readings : node_types().front().readings;
}

} // namespace varnel
