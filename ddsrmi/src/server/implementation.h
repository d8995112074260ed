// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_IMPLEMENTATION_H
#define DDSRMI_SERVER_IMPLEMENTATION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "dds_rmi.h"
#include "ddsrmi/interface_skeleton.h"
#include "ddsrmi/shared_ptr.h"
#include "report.h"
#include "wire/messages.h"

namespace org::opensplice::DDS_RMI {

/// Runs the operations of one implementation, by the hashes that requests carry. Any thread may use it.
class Implementation
{
public:
    struct Outcome
    {
        ReplyKind kind;
        std::vector<DDS::Octet> result;
    };

    Implementation(const shared_ptr<CInterfaceSkeleton>& skeleton, const std::string& service);

    const InterfaceInfo& interface_info() const { return m_interface; }

    /// Nothing of what the operation throws leaves this.
    Outcome run(DDS_RMI_Request& request);

private:
    Outcome run(std::size_t operation, DDS_RMI_Request& request);

    const shared_ptr<CInterfaceSkeleton> m_skeleton;
    const InterfaceInfo& m_interface;
    std::unordered_map<std::uint64_t, std::size_t> m_operations;
    CountedReport m_unknown;
    CountedReport m_undecodable;
};

} // namespace org::opensplice::DDS_RMI

#endif
