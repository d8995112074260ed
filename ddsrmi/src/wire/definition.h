// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_WIRE_DEFINITION_H
#define DDSRMI_WIRE_DEFINITION_H

#include <string>
#include <vector>

#include "dds_rmi.h"
#include "ddsrmi/interface_info.h"

namespace org::opensplice::DDS_RMI {

/// The operations of an interface as this process knows them, for a message. The object must outlive it.
class OwnDefinition
{
public:
    explicit OwnDefinition(const InterfaceInfo& interface_info);

    DDS_RMI_Definition message() const;

private:
    const InterfaceInfo& m_interface;
    mutable std::vector<char*> m_signatures; // a message's own are not const
};

/// What two sides of a session know differently of their interface.
struct InterfaceDifferences
{
    /// For each of our operations, whether the other side has it with the same types.
    std::vector<bool> in_common;
    /// The signatures of ours that are not, for people, each with the other side's of the same name if it has
    /// one.
    std::vector<std::string> missing;
};

InterfaceDifferences compare(const InterfaceInfo& ours, const DDS_RMI_Definition& theirs);

/// The signatures of theirs that are not ours, for people, each with ours of the same name if there is one.
std::vector<std::string> unknown_to(const InterfaceInfo& ours, const DDS_RMI_Definition& theirs);

} // namespace org::opensplice::DDS_RMI

#endif
