// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_MDW_KX_DDS_RMI_RUNTIME_H
#define ZEB_API_MDW_KX_DDS_RMI_RUNTIME_H

#include <ddsrmi.h>

namespace zeb {
namespace api {
namespace mdw {

/// Holds the DDS RMI runtime that lookups go through. Not thread-safe; one thread constructs, uses and
/// destroys it.
class KX_DDS_RMI_RUNTIME
{
public:
    KX_DDS_RMI_RUNTIME() : m_runtime() {}
    /// Ends this holder's use of the runtime, which goes on for its other users. startRUNTIME must have been
    /// called, even if it threw.
    ~KX_DDS_RMI_RUNTIME() { m_runtime->stop(); }
    KX_DDS_RMI_RUNTIME(const KX_DDS_RMI_RUNTIME&) = delete;
    KX_DDS_RMI_RUNTIME& operator=(const KX_DDS_RMI_RUNTIME&) = delete;

    /// Starts the default runtime and holds a reference to it afterwards, also when it could not be started
    /// (it then is not usable) and when something is thrown. With `severalThreads`, proxies found through it
    /// may be called from several threads. To be called once.
    void startRUNTIME(bool severalThreads);

    /// Ends this holder's use of the runtime, but keeps the reference. Doing it twice is harmless.
    void stopRUNTIME();

protected:
    /// Empty until startRUNTIME.
    org::opensplice::DDS_RMI::shared_ptr<org::opensplice::DDS_RMI::CRuntime> m_runtime;
};

/// How long a lookup waits for its service, in seconds; -1 waits for ever. It holds for the runtimes that are
/// started afterwards, in the whole process; 10 unless set. Throws std::invalid_argument below -1. Any thread
/// may call it.
void setServiceDiscoveryTimeout(int seconds);

} // namespace mdw
} // namespace api
} // namespace zeb

#endif
