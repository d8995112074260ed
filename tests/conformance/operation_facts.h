// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_OPERATION_FACTS_H
#define TESTS_CONFORMANCE_OPERATION_FACTS_H

#include <cstddef>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace conformance {

enum class Getter { text, integer };

/// One parameter of an operation, and a value of it for calls.
struct Parameter
{
    std::string key;
    Getter getter;
    /// Whether a text is handed over as a copy.
    bool is_copied;
    /// As JSON, and as the remote operation gets it.
    std::string json;
    std::string argument;
};

/// What the plug-in promises of one operation.
struct OperationFacts
{
    std::string name;
    /// Its place, from 1, in the table of methods.
    std::size_t place;
    std::vector<Parameter> parameters;
    /// Whether "CALL RPC " is written before the handler is made, or after.
    bool logs_first;
    /// What is written before a reply.
    std::string reply_text;
};

inline Parameter text_parameter(const std::string& key, const std::string& value)
{
    return {key, Getter::text, true, '"' + value + '"', '"' + value + '"'};
}

/// In the order of the interface file.
inline const std::vector<OperationFacts>& all_operations()
{
    static const std::vector<OperationFacts> operations = {
        {"network_commission",
         1,
         {text_parameter("mac_addr_list", "AA, bb ,CC")},
         false,
         "async_net_commission returns: "},
        {"network_decommission", 2, {}, true, "async_network_decommission returns: "},
        {"network_add_nodes",
         4,
         {text_parameter("mac_addr_list", "AA;AA")},
         false,
         "async_network_add_nodes returns: "},
        {"network_remove_nodes",
         5,
         {text_parameter("mac_addr_list", " AA")},
         false,
         "async_network_remove_nodes returns: "},
        {"advertising",
         6,
         {{"on", Getter::text, false, "\"true\"", "true"}},
         false,
         "async_set_advertising returns: "},
        {"network_get_node_list", 10, {}, true, "async_network_get_node_list returns: "},
        {"network_get_info", 3, {}, true, "async_network_get_info returns: "},
        {"node_get_config",
         9,
         {text_parameter("mac_addr", "AA:01")},
         true,
         "async_node_get_config returns: "},
        {"node_set_config",
         8,
         {text_parameter("mac_addr", "AA:02"), text_parameter("newCfg", "i=60; m=a")},
         true,
         "async_node_set_config returns: "},
        {"node_get_data", 7, {text_parameter("mac_addr", "AA:04")}, false, "async_node_get_data returns: "},
        {"network_get_nodes_status",
         13,
         {text_parameter("mac_addr_list", "aa:bb")},
         false,
         "async_network_get_nodes_status returns: "},
        {"node_set_config_revert",
         14,
         {text_parameter("mac_addr", "AA:03"),
          text_parameter("newCfg", "i=1"),
          {"duration", Getter::integer, false, "3600", "3600"}},
         true,
         "async_node_set_config_revert returns: "},
        {"test_node_create",
         11,
         {text_parameter("mac_addr", "AA:05"), {"type", Getter::text, false, "\"3\"", "3"}},
         true,
         "async_test_node_create returns: "},
        {"test_node_set_sensor_data",
         12,
         {text_parameter("mac_addr", "AA:06"), text_parameter("newData", "t=21")},
         true,
         "async_test_node_set_sensor_data returns: "},
    };
    return operations;
}

inline const OperationFacts& facts_of(const std::string& name)
{
    for (const OperationFacts& facts : all_operations())
        if (facts.name == name)
            return facts;
    throw std::invalid_argument("no operation " + name);
}

/// A request that gives every parameter its value.
inline std::string request_for(const OperationFacts& facts)
{
    std::string params;
    for (const Parameter& parameter : facts.parameters)
        params += (params.empty() ? "\"" : ", \"") + parameter.key + "\": " + parameter.json;
    return "{\"params\": {" + params + "}}";
}

/// What the recording proxy and the recording server write of that call.
inline std::string call_line(const OperationFacts& facts)
{
    std::string arguments;
    for (const Parameter& parameter : facts.parameters)
        arguments += (arguments.empty() ? "" : ", ") + parameter.argument;
    return facts.name + "(" + arguments + ")";
}

inline void PrintTo(const OperationFacts& facts, std::ostream* stream)
{
    *stream << facts.name;
}

inline std::vector<std::string> operation_names()
{
    std::vector<std::string> names;
    for (const OperationFacts& facts : all_operations())
        names.push_back(facts.name);
    return names;
}

/// The same names in the order of the table of methods.
inline std::vector<std::string> method_names()
{
    std::vector<std::string> names(all_operations().size());
    for (const OperationFacts& facts : all_operations())
        names.at(facts.place - 1) = facts.name;
    return names;
}

} // namespace conformance

#endif
