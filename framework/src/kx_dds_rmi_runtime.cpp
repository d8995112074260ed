// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"

#include <atomic>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace zeb {
namespace api {
namespace mdw {

namespace {

std::atomic<int> discovery_timeout_seconds{10};

} // namespace

KX_DDS_RMI_RUNTIME::KX_DDS_RMI_RUNTIME() = default;

KX_DDS_RMI_RUNTIME::~KX_DDS_RMI_RUNTIME()
{
    try {
        m_runtime->stop(); // harmless when it has been stopped: stops are counted for each hold
    } catch (const std::exception& error) {
        std::cerr << "KX_DDS_RMI_RUNTIME: the DDS RMI runtime could not be stopped: " << error.what()
                  << std::endl;
    }
}

void KX_DDS_RMI_RUNTIME::startRUNTIME(bool severalThreads)
{
    // First of all, because the destructor calls through the handle whatever happens from here on.
    m_runtime = org::opensplice::DDS_RMI::CRuntime::getDefaultRuntime();

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
