// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dds/dds.h>

#include <string>
#include <type_traits>
#include <vector>

#include "VarnelRMI_Interface.h"
#include "VarnelRMI_InterfaceInfo.h"
#include "VarnelRMI_InterfaceProxy.h"
#include "VarnelRMI_operations.h"
#include "slot_of.h"

namespace {

using namespace DDS_RMI::VarnelRMI;
using Proxy = VarnelRMIServiceInterfaceProxy;
using testing::ElementsAre;

std::vector<org::opensplice::DDS_RMI::OperationInfo> operations()
{
    const auto& info = VarnelRMIService_interface_info();
    return {info.operations, info.operations + info.operation_count};
}

TEST(VarnelRMIService, is_announced_under_its_scoped_name)
{
    EXPECT_STREQ(VarnelRMIService_interface_info().server_class, "VarnelRMI::VarnelRMIService");
}

TEST(VarnelRMIService, has_a_request_topic_and_a_reply_topic_for_each_operation)
{
    for (const auto& operation : operations()) {
        const std::string topic = std::string("topic___VarnelRMI__VarnelRMIService__") + operation.name;
        const std::string type = std::string("DDS_RMI::VarnelRMI::VarnelRMIService::") + operation.name;

        EXPECT_EQ(operation.request_topic, topic + "_request");
        EXPECT_EQ(operation.reply_topic, topic + "_reply");
        EXPECT_EQ(operation.request_type->m_typename, type + "_request");
        EXPECT_EQ(operation.reply_type->m_typename, type + "_reply");
    }
}

std::vector<std::string> keys(const dds_topic_descriptor& type)
{
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < type.m_nkeys; ++i) {
        names.emplace_back(type.m_keys[i].m_name);
    }
    return names;
}

TEST(VarnelRMIService, has_topics_that_are_keyed_by_the_client)
{
    const auto by_client =
        ElementsAre("req_info.client_id.client_impl", "req_info.client_id.client_instance");
    for (const auto& operation : operations()) {
        EXPECT_THAT(keys(*operation.request_type), by_client) << operation.name;
        EXPECT_THAT(keys(*operation.reply_type), by_client) << operation.name;
    }
}

// The proxy's and the handlers' tables of virtual functions are what programs that were built against the
// library rely on.
TEST(VarnelRMIServiceInterfaceProxy, has_its_virtual_functions_in_pairs_in_the_order_of_the_operations)
{
#define PAIR(op, ...) slot_of(&Proxy::op), slot_of(&Proxy::async_##op),
    const std::vector<std::ptrdiff_t> slots = {FOR_EVERY_OPERATION(PAIR)};
#undef PAIR

    for (std::size_t i = 0; i < slots.size(); ++i) {
        EXPECT_EQ(slots[i], slots[0] + static_cast<std::ptrdiff_t>(i)) << "function " << i;
    }
}

TEST(VarnelRMIServiceReplyHandler, has_the_hook_right_behind_handleReply)
{
    using Handler = VarnelRMIService_network_commission_Reply_Handler;

    EXPECT_EQ(slot_of(&Handler::network_commission_Reply), slot_of(&Handler::handleReply) + 1);
    EXPECT_EQ(slot_of(&Handler::handleReply), slot_of(&Handler::asyncWait) + 1);
}

// The three shapes of arguments that there are, and the one of replies; a change of any is a change of the
// wire.
static_assert(std::is_same<decltype(&Proxy::async_network_get_info),
                           void (Proxy::*)(VarnelRMIService_network_get_info_Reply_Handler*)>::value,
              "");
static_assert(std::is_same<decltype(&Proxy::async_node_set_config_revert),
                           void (Proxy::*)(DDS::String, DDS::String, DDS::Long,
                                           VarnelRMIService_node_set_config_revert_Reply_Handler*)>::value,
              "");
static_assert(std::is_same<decltype(&Proxy::async_advertising),
                           void (Proxy::*)(DDS::Boolean, VarnelRMIService_advertising_Reply_Handler*)>::value,
              "");
static_assert(std::is_same<decltype(&Proxy::async_test_node_create),
                           void (Proxy::*)(DDS::String, DDS::Long,
                                           VarnelRMIService_test_node_create_Reply_Handler*)>::value,
              "");
static_assert(std::is_same<decltype(&VarnelRMIServiceInterface::test_node_set_sensor_data),
                           DDS::Long (VarnelRMIServiceInterface::*)(DDS::String, DDS::String)>::value,
              "");

} // namespace
