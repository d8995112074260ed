// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "probe_InterfaceProxy.h"
#include "probe_client.h"

namespace {

using namespace DDS_RMI::Probe;
using probe::Outcome;
using probe::taken;
using probe::text;
namespace rmi = org::opensplice::DDS_RMI;

constexpr std::size_t one_mebibyte = std::size_t{1024} * 1024;

template <class Value>
std::array<unsigned char, sizeof(Value)> bytes_of(const Value& value)
{
    std::array<unsigned char, sizeof(Value)> bytes;
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

/// Compares bytes, so that a NaN is itself and 0 is not -0.
template <class Value>
bool is_same(const Value& first, const Value& second)
{
    return bytes_of(first) == bytes_of(second);
}

template <class Value>
std::vector<Value> boundaries()
{
    using Limits = std::numeric_limits<Value>;
    std::vector<Value> values{Limits::lowest(), Limits::min(), Limits::max(), Value(0), Value(1), Value(-1)};
    if (Limits::has_infinity) {
        values.insert(values.end(), {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                                     Limits::denorm_min(), Limits::epsilon(), Value(-0.0)});
    }
    return values;
}

/// An operation that gives its argument back. (Its name is a part of those of its functions.)
#define ECHO_OPERATION(name, Type)                                                                           \
    struct name                                                                                              \
    {                                                                                                        \
        using Value = Type;                                                                                  \
        static constexpr auto waiting_form = &EchoInterfaceProxy::name;                                      \
        static constexpr auto starting_form = &EchoInterfaceProxy::async_##name;                             \
        class Handler : public Echo_##name##_Reply_Handler                                                   \
        {                                                                                                    \
        public:                                                                                              \
            Outcome<Value> outcome;                                                                          \
            void name##_Reply(Value result) override { outcome.set(result); }                                \
        };                                                                                                   \
    }

ECHO_OPERATION(echo_char, DDS::Char);
ECHO_OPERATION(echo_octet, DDS::Octet);
ECHO_OPERATION(echo_short, DDS::Short);
ECHO_OPERATION(echo_ushort, DDS::UShort);
ECHO_OPERATION(echo_long, DDS::Long);
ECHO_OPERATION(echo_ulong, DDS::ULong);
ECHO_OPERATION(echo_longlong, DDS::LongLong);
ECHO_OPERATION(echo_ulonglong, DDS::ULongLong);
ECHO_OPERATION(echo_float, DDS::Float);
ECHO_OPERATION(echo_double, DDS::Double);
ECHO_OPERATION(echo_boolean, DDS::Boolean);

class EchoCall : public probe::Client
{
protected:
    rmi::shared_ptr<EchoInterfaceProxy> proxy = proxy_of<EchoInterfaceProxy>("echo");

    template <class Operation>
    typename Operation::Value call(typename Operation::Value value)
    {
        return (proxy.get()->*Operation::waiting_form)(value);
    }

    template <class Operation>
    typename Operation::Value call_asynchronously(typename Operation::Value value)
    {
        const rmi::shared_ptr<typename Operation::Handler> handler(new typename Operation::Handler);
        (proxy.get()->*Operation::starting_form)(value, handler.get());
        return handler->outcome.get();
    }
};

template <class Operation>
class NumberCall : public EchoCall
{
};

class OperationName
{
public:
    template <class Operation>
    static std::string GetName(int)
    {
        const std::string handler = testing::internal::GetTypeName<Operation>();
        return handler.substr(handler.rfind(':') + 1);
    }
};

using NumberOperations = testing::Types<echo_char, echo_octet, echo_short, echo_ushort, echo_long, echo_ulong,
                                        echo_longlong, echo_ulonglong, echo_float, echo_double>;
TYPED_TEST_SUITE(NumberCall, NumberOperations, OperationName);

TYPED_TEST(NumberCall, brings_the_boundary_values_of_the_type_there_and_back)
{
    using Value = typename TypeParam::Value;
    for (const Value value : boundaries<Value>()) {
        EXPECT_PRED2(is_same<Value>, this->template call<TypeParam>(value), value);
        EXPECT_PRED2(is_same<Value>, this->template call_asynchronously<TypeParam>(value), value);
    }
}

TEST_F(EchoCall, brings_booleans_as_0_or_1)
{
    EXPECT_EQ(call<echo_boolean>(0), 0);
    EXPECT_EQ(call<echo_boolean>(1), 1);
    EXPECT_EQ(call<echo_boolean>(200), 1);
    EXPECT_EQ(call_asynchronously<echo_boolean>(0), 0);
    EXPECT_EQ(call_asynchronously<echo_boolean>(1), 1);
}

class EchoStringHandler : public Echo_echo_string_Reply_Handler
{
public:
    Outcome<std::string> outcome;
    void echo_string_Reply(DDS::String result) override { outcome.set(result); }
};

TEST_F(EchoCall, brings_texts_of_any_length_there_and_back)
{
    const std::vector<std::string> texts = {"", "a", "\x01\xff", "t\xc3\xa4xt\n",
                                            std::string(one_mebibyte, 'x')};
    for (const std::string& value : texts) {
        EXPECT_TRUE(taken(proxy->echo_string(text(value))) == value) << value.size();

        const rmi::shared_ptr<EchoStringHandler> handler(new EchoStringHandler);
        proxy->async_echo_string(text(value), handler.get());
        EXPECT_TRUE(handler->outcome.get() == value) << value.size();
    }
}

class NullTextHandler : public Echo_null_text_Reply_Handler
{
public:
    Outcome<std::string> outcome;
    void null_text_Reply(DDS::String result) override { outcome.set(result); }
};

TEST_F(EchoCall, brings_a_null_text_as_an_empty_one)
{
    EXPECT_EQ(taken(proxy->echo_string(nullptr)), "");
    EXPECT_EQ(taken(proxy->null_text()), "");

    const rmi::shared_ptr<NullTextHandler> handler(new NullTextHandler);
    proxy->async_null_text(handler.get());
    EXPECT_EQ(handler->outcome.get(), "");
}

class KeepHandler : public Echo_keep_Reply_Handler
{
public:
    Outcome<bool> outcome;
    void keep_Reply() override { outcome.set(true); }
};

class ForgetHandler : public Echo_forget_Reply_Handler
{
public:
    Outcome<bool> outcome;
    void forget_Reply() override { outcome.set(true); }
};

class KeptHandler : public Echo_kept_Reply_Handler
{
public:
    Outcome<std::string> outcome;
    void kept_Reply(DDS::String result) override { outcome.set(result); }
};

TEST_F(EchoCall, of_an_operation_without_result_has_been_run_when_it_returns)
{
    proxy->keep(text("something"));
    EXPECT_EQ(taken(proxy->kept()), "something");

    proxy->forget();
    EXPECT_EQ(taken(proxy->kept()), "");
}

TEST_F(EchoCall, of_an_operation_without_result_has_been_run_when_its_hook_is_called)
{
    const rmi::shared_ptr<KeepHandler> keeping(new KeepHandler);
    proxy->async_keep(text("something"), keeping.get());
    ASSERT_TRUE(keeping->outcome.get());
    const rmi::shared_ptr<KeptHandler> asking(new KeptHandler);
    proxy->async_kept(asking.get());
    EXPECT_EQ(asking->outcome.get(), "something");

    const rmi::shared_ptr<ForgetHandler> forgetting(new ForgetHandler);
    proxy->async_forget(forgetting.get());
    ASSERT_TRUE(forgetting->outcome.get());
    EXPECT_EQ(taken(proxy->kept()), "");
}

class AllHandler : public Echo_all_Reply_Handler
{
public:
    Outcome<std::string> outcome;
    void all_Reply(DDS::String result) override { outcome.set(result); }
};

TEST_F(EchoCall, brings_all_arguments_each_to_its_place)
{
    const std::string expected = "1 b 255 -32768 65535 -2147483648 4294967295 -9223372036854775808 "
                                 "18446744073709551615 0.5 -0.25 first second";
    const DDS::LongLong lowest = std::numeric_limits<DDS::LongLong>::min();
    const DDS::ULongLong highest = std::numeric_limits<DDS::ULongLong>::max();

    EXPECT_EQ(taken(proxy->all(1, 'b', 255, -32768, 65535, -2147483647 - 1, 4294967295U, lowest, highest,
                               0.5F, -0.25, text("first"), text("second"))),
              expected);
    const rmi::shared_ptr<AllHandler> handler(new AllHandler);
    proxy->async_all(1, 'b', 255, -32768, 65535, -2147483647 - 1, 4294967295U, lowest, highest, 0.5F, -0.25,
                     text("first"), text("second"), handler.get());
    EXPECT_EQ(handler->outcome.get(), expected);
}

using OtherCall = probe::Client;

TEST_F(OtherCall, works_with_arguments_that_have_the_names_of_generated_code)
{
    const auto proxy = proxy_of<NamesInterfaceProxy>("names");

    EXPECT_EQ(proxy->request(1, text("a"), 2, text("b"), text("c"), 3), 123);
    EXPECT_EQ(proxy->reply(1, 2, 3, 4, 5), 12345);
    EXPECT_EQ(proxy->rmi(1, 2, 3, 4), 1234);
    EXPECT_EQ(proxy->map(1, 2, 3, 4, 5, 6), 123456);
}

TEST_F(OtherCall, reaches_an_interface_of_the_same_name_in_a_nested_module)
{
    const auto proxy = proxy_of<DDS_RMI::Outer::Inner::EchoInterfaceProxy>("greeting");

    EXPECT_EQ(taken(proxy->greet(text("world"))), "hello world");
}

TEST_F(OtherCall, reaches_an_interface_of_a_module_that_was_opened_again)
{
    EXPECT_EQ(proxy_of<LaterInterfaceProxy>("number")->number(), 4294967295U);
}

} // namespace
