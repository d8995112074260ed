// SPDX-License-Identifier: Apache-2.0
// That the remote interface has the operations which the tests know, in their order.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "VarnelRMI_InterfaceInfo.h"
#include "operation_facts.h"

namespace {

TEST(InterfaceFile, has_the_operations_of_operation_facts_in_their_order)
{
    const auto& info = DDS_RMI::VarnelRMI::VarnelRMIService_interface_info();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < info.operation_count; ++i)
        names.emplace_back(info.operations[i].name);

    EXPECT_EQ(names, conformance::operation_names())
        << "rmi/VarnelRMI.idl and tests/conformance/operation_facts.h differ";
}

} // namespace
