// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_PROXY_FACTORIES_H
#define DDSRMI_CLIENT_PROXY_FACTORIES_H

#include <optional>
#include <string>

#include "ddsrmi/interface_info.h"

namespace org::opensplice::DDS_RMI {

struct KnownProxy
{
    const InterfaceInfo* interface_info;
    ProxyFactory factory;
};

/// What the newest ProxyRegistration for that interface gives; nothing when there is none.
std::optional<KnownProxy> find_proxy(const std::string& server_class);

} // namespace org::opensplice::DDS_RMI

#endif
