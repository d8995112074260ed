// SPDX-License-Identifier: Apache-2.0
#include "client/proxy_factories.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace org::opensplice::DDS_RMI {

namespace {

struct Registrations
{
    std::mutex mutex;
    std::vector<KnownProxy> known; // guarded by mutex; oldest first
};

// Never destroyed: interface libraries take their registrations back when the process ends.
Registrations& registrations()
{
    static auto& instance = *new Registrations;
    return instance;
}

} // namespace

ProxyRegistration::ProxyRegistration(const InterfaceInfo& interface_info, ProxyFactory factory)
    : m_interface(interface_info), m_factory(factory)
{
    const std::lock_guard lock(registrations().mutex);
    registrations().known.push_back({&m_interface, m_factory});
}

ProxyRegistration::~ProxyRegistration()
{
    const std::lock_guard lock(registrations().mutex);
    auto& known = registrations().known;
    const auto own = std::find_if(known.begin(), known.end(), [this](const KnownProxy& one) {
        return one.interface_info == &m_interface;
    });
    if (own != known.end())
        known.erase(own);
}

std::optional<KnownProxy> find_proxy(const std::string& server_class)
{
    const std::lock_guard lock(registrations().mutex);
    const auto& known = registrations().known;
    const auto found = std::find_if(known.rbegin(), known.rend(), [&](const KnownProxy& one) {
        return one.interface_info->server_class == server_class;
    });
    if (found == known.rend())
        return std::nullopt;
    return *found;
}

} // namespace org::opensplice::DDS_RMI
