// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_HEALTH_REPORT_H
#define ZORBD_HEALTH_REPORT_H

#include <string>

namespace zorbd {

class PluginSet;

/// Whether every plug-in is bound, and which are.
struct HealthReport
{
    bool healthy = false;
    std::string json;
};

HealthReport report_health(const PluginSet& plugins);

} // namespace zorbd

#endif
