// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/KX_RPCHandler.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "zeb/api/CallbackMethod.h"

namespace zeb {
namespace api {

KX_RPCHandler::KX_RPCHandler() = default;

KX_RPCHandler::~KX_RPCHandler()
{
    while (!m_methods.empty()) {
        const std::unique_ptr<CallbackMethod> last(m_methods.back());
        m_methods.pop_back();
    }
}

bool KX_RPCHandler::isBound()
{
    return true;
}

void KX_RPCHandler::AddMethod(CallbackMethod* method)
{
    if (method == nullptr || contains(method))
        return;
    std::unique_ptr<CallbackMethod> owned(method);
    const std::string name = owned->GetName();
    // Once the name is taken nothing may throw any more.
    m_methods.reserve(m_methods.size() + 1);
    if (m_methodsByName.emplace(name, method).second)
        m_methods.push_back(owned.release());
    else
        std::cerr << "KX_RPCHandler: there is a method '" << name << "' already; the second one is dropped"
                  << std::endl;
}

CallbackMethod* KX_RPCHandler::FindMethod(const std::string& name) const
{
    const auto found = m_methodsByName.find(name);
    return found == m_methodsByName.end() ? nullptr : found->second;
}

const std::vector<CallbackMethod*>& KX_RPCHandler::GetMethods() const
{
    return m_methods;
}

bool KX_RPCHandler::contains(const CallbackMethod* method) const
{
    return std::find(m_methods.begin(), m_methods.end(), method) != m_methods.end();
}

} // namespace api
} // namespace zeb
