// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"

#include <atomic>
#include <stdexcept>
#include <string>

namespace zeb {
namespace api {
namespace mdw {

using org::opensplice::DDS_RMI::CRuntime;
using org::opensplice::DDS_RMI::CRuntime_ref;

namespace {

std::atomic<int> discovery_timeout_seconds{10};

/// A hold on the runtime that is never started, so it can be stopped at any time. It is made when the library
/// is loaded, because there may be no memory for one when it is needed; and never destroyed, because the last
/// holder may go after the library's statics.
const CRuntime_ref& idle_hold = *new CRuntime_ref(CRuntime::getDefaultRuntime());

} // namespace

void KX_DDS_RMI_RUNTIME::startRUNTIME(bool severalThreads)
{
    // First of all, because the destructor calls through the handle whatever happens from here on.
    m_runtime = idle_hold;
    m_runtime = CRuntime::getDefaultRuntime();

    const std::string threading = std::string("--RMIClientThreadingModel=") + (severalThreads ? "MT" : "ST");
    const std::string timeout =
        "--RMIServiceDiscoveryTimeout=" + std::to_string(discovery_timeout_seconds.load());
    const char* arguments[] = {"zorb", threading.c_str(), timeout.c_str()};
    m_runtime->start(sizeof arguments / sizeof arguments[0], arguments);
}

void KX_DDS_RMI_RUNTIME::stopRUNTIME()
{
    m_runtime->stop();
}

void setServiceDiscoveryTimeout(int seconds)
{
    if (seconds < -1)
        throw std::invalid_argument("the service discovery timeout is " + std::to_string(seconds) +
                                    "; it must be -1 (for ever) or a number of seconds");
    discovery_timeout_seconds = seconds;
}

} // namespace mdw
} // namespace api
} // namespace zeb
