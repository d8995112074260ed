// SPDX-License-Identifier: Apache-2.0
// A client with the interface file beside this calls a server with ../composed.idl.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "composed_InterfaceProxy.h"
#include "generator/probe_client.h"

namespace {

using namespace DDS_RMI::Composed;
using probe::taken;
using probe::text;
namespace rmi = org::opensplice::DDS_RMI;

class LaterClient : public probe::Client
{
protected:
    rmi::shared_ptr<StationInterfaceProxy> proxy = proxy_of<StationInterfaceProxy>("station");
};

TEST_F(LaterClient, calls_operations_whose_types_have_stayed_the_same)
{
    const Longs longs{1, 2, 3};
    DDS::Long first = 0;
    DDS::Double second = 0;

    EXPECT_EQ(proxy->echo_longs(longs), longs);
    EXPECT_EQ(taken(proxy->echo_label(text("label"))), "label");
    EXPECT_EQ(proxy->number_out(1, first, second), 1);
    EXPECT_THROW(proxy->raising_misnamed(3), Misnamed);
}

TEST_F(LaterClient, is_refused_operations_of_which_a_type_has_changed)
{
    DDS::String unsaid = text("");

    EXPECT_THROW(proxy->echo_point(Point()), rmi::BAD_PARAM) << "another member of a struct";
    EXPECT_THROW(proxy->echo_mode(heating), rmi::BAD_PARAM) << "enumerators in another order";
    EXPECT_THROW(proxy->raising(0, unsaid), rmi::BAD_PARAM) << "another member of an exception";
    EXPECT_THROW(proxy->note(text("a text"), Point()), rmi::BAD_PARAM) << "also without a reply";
    EXPECT_EQ(taken(unsaid), "") << "a text that goes both ways stays the caller's";
}

} // namespace
