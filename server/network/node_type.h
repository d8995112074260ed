// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_NETWORK_NODE_TYPE_H
#define SERVER_NETWORK_NODE_TYPE_H

#include <string>
#include <vector>

namespace varnel {

/// A type code that has a name.
struct NodeTypeInfo
{
    int code;
    const char* name;
    /// What an ordinary node of this type reads, as key=value pairs.
    const char* readings;
};

/// The named types; their codes run from 0 without a gap.
const std::vector<NodeTypeInfo>& node_types();

/// Whether a node can have this type code, named or not.
bool is_node_type(int code);

std::string node_type_name(int code);

/// What an ordinary node of this type reads.
std::string simulated_readings(int code);

} // namespace varnel

#endif
