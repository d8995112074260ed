// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_GENERATOR_PROBE_CLIENT_H
#define TESTS_GENERATOR_PROBE_CLIENT_H

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>

#include "ddsrmi.h"
#include "support/child_process.h"
#include "support/dds_domain.h"

namespace probe {

namespace rmi = org::opensplice::DDS_RMI;

/// A text for a call, which takes it over.
inline DDS::String text(const std::string& value)
{
    return DDS::string_dup(value.c_str());
}

/// The text of a result, which is freed.
inline std::string taken(DDS::String result)
{
    std::string value = result;
    DDS::string_free(result);
    return value;
}

/// The outcome of one asynchronous call, which its reply hook sets.
template <class Value>
class Outcome
{
public:
    void set(const Value& value) { m_promise.set_value(value); }

    Value get()
    {
        auto future = m_promise.get_future();
        if (future.wait_for(test_support::event_deadline) != std::future_status::ready) {
            throw std::runtime_error("no reply came");
        }
        return future.get();
    }

private:
    std::promise<Value> m_promise;
};

/// A client of the probe server, which is a process of its own in a domain of its own.
class Client : public testing::Test
{
public:
    Client() : m_server({PROBE_SERVER}), m_runtime(rmi::CRuntime::getDefaultRuntime())
    {
        const char* options[] = {"client", "--RMIServiceDiscoveryTimeout=60"};
        m_is_up = m_runtime->start(2, options);
    }

    ~Client() override
    {
        m_runtime->stop();
        m_server.close_input();
        EXPECT_EQ(m_server.wait_for_exit(), 0) << m_server.error_output();
    }

protected:
    void SetUp() override { ASSERT_TRUE(m_is_up); }

    /// Throws SERVICE_NOT_FOUND.
    template <class Proxy>
    static rmi::shared_ptr<Proxy> proxy_of(const std::string& service)
    {
        rmi::shared_ptr<Proxy> proxy;
        if (!rmi::DDS_Service::getServerProxy<Proxy>(service, 1, proxy)) {
            throw std::runtime_error("there is no proxy of " + service);
        }
        return proxy;
    }

private:
    test_support::DdsDomain m_domain;
    test_support::ChildProcess m_server;
    rmi::CRuntime_ref m_runtime;
    bool m_is_up = false;
};

} // namespace probe

#endif
