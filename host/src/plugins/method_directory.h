// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_METHOD_DIRECTORY_H
#define ZORBD_METHOD_DIRECTORY_H

#include <memory>
#include <string>

namespace zeb::api {
class CallbackMethod;
}

namespace zorbd {

class ParamCheck;

struct MethodLookup
{
    /// Null when there is no such method now. It can be called until the directory's plug-ins are released.
    zeb::api::CallbackMethod* method = nullptr;
    /// The file of the plug-in that offers it; lives as long as the directory.
    const std::string* plugin = nullptr;
    /// What its parameters are checked by; null when they are not. Lives as long as the directory.
    const ParamCheck* params = nullptr;
    /// Whether a plug-in that might offer the name is still waiting for its service.
    bool may_still_come = false;
};

/// The methods that can be called now. Every operation may be called from any thread.
class MethodDirectory
{
public:
    virtual ~MethodDirectory() = default;

    virtual MethodLookup find(const std::string& name) const = 0;

    /// The OpenRPC document of the methods, as JSON text; never null.
    virtual std::shared_ptr<const std::string> discovery_document() const = 0;
};

} // namespace zorbd

#endif
