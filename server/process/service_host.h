// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_SERVICE_HOST_H
#define SERVER_PROCESS_SERVICE_HOST_H

#include <string>

#include "ddsrmi.h"

#include "process/options.h"
#include "process/varnel_service.h"

namespace varnel {

/// The started DDS RMI runtime, for as long as it lives.
class ServerRuntime
{
public:
    /// Throws std::runtime_error when it cannot be started.
    explicit ServerRuntime(int threads);
    ~ServerRuntime();
    ServerRuntime(const ServerRuntime&) = delete;
    ServerRuntime& operator=(const ServerRuntime&) = delete;

    const org::opensplice::DDS_RMI::CRuntime_ref& handle() const { return m_runtime; }

private:
    // Kept throughout: the runtime counts its starts by the hold that made them.
    org::opensplice::DDS_RMI::CRuntime_ref m_runtime;
};

/// A service that the default runtime offers for as long as this object lives; afterwards none of its
/// operations is running.
class RegisteredService
{
public:
    /// Throws std::runtime_error when it cannot be offered.
    RegisteredService(const VarnelServiceHandle& service, const std::string& name, int instance);
    ~RegisteredService();
    RegisteredService(const RegisteredService&) = delete;
    RegisteredService& operator=(const RegisteredService&) = delete;

private:
    std::string m_name;
    int m_instance;
};

} // namespace varnel

#endif
