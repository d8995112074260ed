// SPDX-License-Identifier: Apache-2.0
#include "wire/definition.h"

#include <algorithm>
#include <string_view>

namespace org::opensplice::DDS_RMI {

namespace {

// A signature reads "result name(arguments)".
std::string_view name_in(std::string_view signature)
{
    const auto end = signature.find('(');
    const auto blank = signature.rfind(' ', end);
    return blank == std::string_view::npos ? std::string_view()
                                           : signature.substr(blank + 1, end - blank - 1);
}

// Peers may send any text; what goes into a log is short and printable.
std::string quoted(std::string_view signature)
{
    constexpr std::size_t longest = 200;
    std::string text(signature.substr(0, longest));
    std::replace_if(
        text.begin(), text.end(), [](char one) { return one < ' ' || one > '~'; }, '.');
    return "'" + text + (signature.size() > longest ? "...'" : "'");
}

} // namespace

OwnDefinition::OwnDefinition(const InterfaceInfo& interface_info) : m_interface(interface_info)
{
    for (std::size_t i = 0; i < interface_info.operation_count; ++i)
        m_signatures.push_back(const_cast<char*>(interface_info.operations[i].signature));
}

DDS_RMI_Definition OwnDefinition::message() const
{
    DDS_RMI_Definition definition{};
    definition.server_class = const_cast<char*>(m_interface.server_class);
    definition.server_api._buffer = m_signatures.data();
    definition.server_api._length = static_cast<std::uint32_t>(m_signatures.size());
    definition.server_api._maximum = definition.server_api._length;
    return definition;
}

InterfaceDifferences compare(const InterfaceInfo& ours, const DDS_RMI_Definition& theirs)
{
    InterfaceDifferences differences;
    const char* const* const first = theirs.server_api._buffer;
    const char* const* const last = first + theirs.server_api._length;
    for (std::size_t i = 0; i < ours.operation_count; ++i) {
        const OperationInfo& own = ours.operations[i];
        const bool same =
            std::any_of(first, last, [&](std::string_view signature) { return signature == own.signature; });
        differences.in_common.push_back(same);
        if (same)
            continue;
        const auto changed = std::find_if(
            first, last, [&](std::string_view signature) { return name_in(signature) == own.name; });
        differences.missing.push_back(quoted(own.signature) +
                                      (changed == last ? "" : " (there: " + quoted(*changed) + ")"));
    }
    return differences;
}

std::vector<std::string> unknown_to(const InterfaceInfo& ours, const DDS_RMI_Definition& theirs)
{
    std::vector<std::string> unknown;
    const OperationInfo* const first = ours.operations;
    const OperationInfo* const last = first + ours.operation_count;
    for (std::uint32_t i = 0; i < theirs.server_api._length; ++i) {
        const std::string_view signature = theirs.server_api._buffer[i];
        if (std::any_of(first, last, [&](const OperationInfo& own) { return own.signature == signature; }))
            continue;
        const auto changed = std::find_if(
            first, last, [&](const OperationInfo& own) { return own.name == name_in(signature); });
        unknown.push_back(quoted(signature) +
                          (changed == last ? "" : " (here: " + quoted(changed->signature) + ")"));
    }
    return unknown;
}

} // namespace org::opensplice::DDS_RMI
