// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_METHOD_STUBS_H
#define TESTS_HOST_METHOD_STUBS_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "plugins/method_directory.h"
#include "zeb/api/CallbackMethod.h"

namespace host_test {

/// A method made of a function.
class FunctionMethod : public zeb::api::CallbackMethod
{
public:
    using Json = zeb::api::data::KX_JSON;
    using Function = std::function<int(const Json& in, Json& out)>;

    explicit FunctionMethod(Function function, std::string name = "", Json description = {})
        : m_function(std::move(function)), m_name(std::move(name)), m_description(std::move(description))
    {
    }

    int Call(const Json& in, Json& out) override { return m_function(in, out); }
    std::string GetName() const override { return m_name; }
    Json GetDescription() const override { return m_description; }

private:
    Function m_function;
    std::string m_name;
    Json m_description;
};

/// A directory of such methods.
class StubDirectory : public zorbd::MethodDirectory
{
public:
    void add(const std::string& name, FunctionMethod::Function function)
    {
        m_methods[name] = std::make_unique<FunctionMethod>(std::move(function), name);
    }

    zorbd::MethodLookup find(const std::string& name) const override
    {
        const auto found = m_methods.find(name);
        if (found == m_methods.end())
            return {nullptr, nullptr, nullptr, may_still_come};
        return {found->second.get(), &m_plugin, nullptr, false};
    }

    std::shared_ptr<const std::string> discovery_document() const override
    {
        return std::make_shared<const std::string>(R"({"openrpc":"stub"})");
    }

    bool may_still_come = false;

private:
    std::map<std::string, std::unique_ptr<FunctionMethod>> m_methods;
    const std::string m_plugin = "stub.so";
};

} // namespace host_test

#endif
