// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/RpcMethod.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "parse_json.h"

namespace {

using zeb::api::CallbackMethod;
using zeb::api::RpcMethod;
using zeb::api::data::KX_JSON;

struct Owner
{
    int record(const KX_JSON& in, KX_JSON& out)
    {
        seen_in = &in;
        seen_out = &out;
        return result;
    }

    int fail(const KX_JSON&, KX_JSON&) { throw std::out_of_range("too far"); }

    const KX_JSON* seen_in = nullptr;
    const KX_JSON* seen_out = nullptr;
    int result = 0;
};

TEST(RpcMethod, calls_its_member_function_with_the_very_same_objects)
{
    Owner owner;
    owner.result = -42;
    RpcMethod<Owner> method("record", &owner, &Owner::record, KX_JSON());
    const KX_JSON in;
    KX_JSON out;

    const int result = static_cast<CallbackMethod&>(method).Call(in, out);

    EXPECT_EQ(result, -42);
    EXPECT_EQ(owner.seen_in, &in);
    EXPECT_EQ(owner.seen_out, &out);
}

TEST(RpcMethod, lets_exceptions_pass)
{
    Owner owner;
    RpcMethod<Owner> method("fail", &owner, &Owner::fail, KX_JSON());
    KX_JSON out;

    EXPECT_THROW(method.Call(KX_JSON(), out), std::out_of_range);
}

TEST(RpcMethod, keeps_a_name_of_its_own)
{
    Owner owner;
    std::string name = "record";
    const RpcMethod<Owner> method(name, &owner, &Owner::record, KX_JSON());

    name = "changed";

    EXPECT_EQ(method.GetName(), "record");
}

TEST(RpcMethod, has_an_empty_description_when_it_was_given_none)
{
    Owner owner;
    const RpcMethod<Owner> method("record", &owner, &Owner::record,
                                  KX_JSON(static_cast<const json_object*>(nullptr)));

    EXPECT_EQ(method.GetDescription().get(), nullptr);
}

TEST(RpcMethod, gives_copies_of_its_description)
{
    Owner owner;
    KX_JSON description = parse_json(R"({"params":["a"]})");
    const RpcMethod<Owner> method("record", &owner, &Owner::record, description);

    description = KX_JSON();

    EXPECT_EQ(method.GetDescription().to_string(), R"({"params":["a"]})");
    EXPECT_EQ(method.GetDescription().get(), method.GetDescription().get()) << "the copies share one object";
}

} // namespace
