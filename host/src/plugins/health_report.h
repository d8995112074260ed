// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HEALTH_REPORT_H
#define ZORBD_HEALTH_REPORT_H

#include <cstdint>
#include <string>
#include <vector>

namespace zorbd {

class PluginLoads;
class PluginSet;

/// How one of the process's output streams fares.
struct StreamHealth
{
    std::string name;
    std::string trouble;       ///< why nothing can be written now; empty when all is well
    std::uint64_t dropped = 0; ///< lines
};

/// Whether every plug-in is bound and none has calls that take too long, and which are; what is wrong with an
/// output stream makes nobody unhealthy.
struct HealthReport
{
    bool healthy = false;
    std::string json;
};

HealthReport report_health(const PluginSet& plugins, const PluginLoads& loads,
                           const std::vector<StreamHealth>& streams);

} // namespace zorbd

#endif
