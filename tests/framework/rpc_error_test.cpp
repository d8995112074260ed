// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/RpcError.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using zeb::api::RpcError;
using zeb::api::data::KX_JSON;

TEST(RpcError, says_what_it_was_given)
{
    const RpcError error(404, "No such room", KX_JSON::parse(R"(["kitchen"])"));

    EXPECT_EQ(error.code(), 404);
    EXPECT_STREQ(error.what(), "No such room");
    EXPECT_EQ(error.data().to_string(), R"(["kitchen"])");
}

TEST(RpcError, has_no_data_unless_it_was_given_some)
{
    EXPECT_EQ(RpcError(1, "").data().get(), nullptr);
}

TEST(RpcError, is_an_ordinary_error_for_whoever_does_not_know_it)
{
    EXPECT_THROW(throw RpcError(1, "sentence"), std::runtime_error);
}

TEST(RpcError, can_be_copied_and_assigned)
{
    const RpcError first(1, "one", KX_JSON::parse("{}"));
    RpcError second(first);
    EXPECT_EQ(second.data().get(), first.data().get()) << "the copies share the data";

    second = RpcError(2, "two");

    EXPECT_EQ(second.code(), 2);
    EXPECT_STREQ(second.what(), "two");
    EXPECT_EQ(second.data().get(), nullptr);
}

} // namespace
