// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/KX_RPCHandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "zeb/api/CallbackMethod.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using zeb::api::CallbackMethod;
using zeb::api::KX_RPCHandler;
using zeb::api::data::KX_JSON;

/// A method that writes its name down when it is deleted.
class RecordedMethod : public CallbackMethod
{
public:
    RecordedMethod(std::string name, std::vector<std::string>& deleted)
        : m_name(std::move(name)), m_deleted(deleted)
    {
    }
    ~RecordedMethod() override { m_deleted.push_back(m_name); }

    int Call(const KX_JSON&, KX_JSON&) override { return 0; }
    std::string GetName() const override { return m_name; }
    KX_JSON GetDescription() const override { return KX_JSON(); }

private:
    std::string m_name;
    std::vector<std::string>& m_deleted;
};

class NamelessMethod : public RecordedMethod
{
public:
    using RecordedMethod::RecordedMethod;
    std::string GetName() const override { throw std::runtime_error("no name"); }
};

class KxRpcHandler : public testing::Test
{
protected:
    CallbackMethod* add(const std::string& name)
    {
        auto* const method = new RecordedMethod(name, m_deleted);
        m_handler->AddMethod(method);
        return method;
    }

    std::vector<std::string> m_deleted;
    std::unique_ptr<KX_RPCHandler> m_handler = std::make_unique<KX_RPCHandler>();
};

TEST_F(KxRpcHandler, is_bound_and_empty_at_first)
{
    EXPECT_TRUE(m_handler->isBound());
    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
    EXPECT_EQ(m_handler->FindMethod(""), nullptr);
}

TEST_F(KxRpcHandler, keeps_the_order_of_its_methods)
{
    CallbackMethod* const zebra = add("zebra");
    CallbackMethod* const ant = add("ant");
    CallbackMethod* const mole = add("mole");

    EXPECT_THAT(m_handler->GetMethods(), ElementsAre(zebra, ant, mole));
}

TEST_F(KxRpcHandler, finds_a_method_by_its_exact_name)
{
    add("node_set_config");
    CallbackMethod* const revert = add("node_set_config_revert");

    EXPECT_EQ(m_handler->FindMethod("node_set_config_revert"), revert);
    EXPECT_EQ(m_handler->FindMethod("node_set"), nullptr);
    EXPECT_EQ(m_handler->FindMethod("NODE_SET_CONFIG"), nullptr);
}

TEST_F(KxRpcHandler, deletes_its_methods_last_added_first)
{
    add("first");
    add("second");

    m_handler.reset();

    EXPECT_THAT(m_deleted, ElementsAre("second", "first"));
}

TEST_F(KxRpcHandler, keeps_the_first_of_two_methods_of_one_name_and_says_so)
{
    CallbackMethod* const first = add("twin");

    testing::internal::CaptureStderr();
    add("twin");
    const std::string said = testing::internal::GetCapturedStderr();

    EXPECT_THAT(m_handler->GetMethods(), ElementsAre(first));
    EXPECT_EQ(m_handler->FindMethod("twin"), first);
    EXPECT_THAT(m_deleted, ElementsAre("twin"));
    EXPECT_THAT(said, HasSubstr("'twin'"));
}

TEST_F(KxRpcHandler, ignores_a_method_that_it_has_already)
{
    CallbackMethod* const method = add("once");

    m_handler->AddMethod(method);

    EXPECT_THAT(m_handler->GetMethods(), ElementsAre(method));
    EXPECT_THAT(m_deleted, IsEmpty());
}

TEST_F(KxRpcHandler, ignores_a_null_pointer)
{
    m_handler->AddMethod(nullptr);

    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
}

TEST_F(KxRpcHandler, deletes_a_method_whose_name_cannot_be_had)
{
    EXPECT_THROW(m_handler->AddMethod(new NamelessMethod("nameless", m_deleted)), std::runtime_error);

    EXPECT_THAT(m_handler->GetMethods(), IsEmpty());
    EXPECT_THAT(m_deleted, ElementsAre("nameless"));
}

} // namespace
