// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(VarnelRMIService, is_announced_under_its_scoped_name)
{
    EXPECT_STREQ(VarnelRMIService_interface_info().server_class, "VarnelRMI::VarnelRMIService");
}

TEST(VarnelRMIService, has_one_request_topic_and_one_reply_topic)
{
    const auto& info = VarnelRMIService_interface_info();

    EXPECT_STREQ(info.request_topic, "topic___VarnelRMI__VarnelRMIService__request");
    EXPECT_STREQ(info.reply_topic, "topic___VarnelRMI__VarnelRMIService__reply");
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
