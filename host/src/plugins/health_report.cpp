// SPDX-License-Identifier: Apache-2.0
#include "plugins/health_report.h"

#include <algorithm>
#include <vector>

#include "plugins/plugin_set.h"
#include "json/json_value.h"

namespace zorbd {
namespace {

std::string to_json(const PluginStatus& plugin)
{
    return R"({"file":)" + json_text(json_string(plugin.file).get()) + R"(,"bound":)" +
           (plugin.bound ? "true" : "false") + R"(,"methods":)" + std::to_string(plugin.methods) + '}';
}

} // namespace

HealthReport report_health(const PluginSet& plugins)
{
    const std::vector<PluginStatus> all = plugins.status();
    HealthReport report;
    report.healthy =
        std::all_of(all.begin(), all.end(), [](const PluginStatus& plugin) { return plugin.bound; });
    report.json = std::string(R"({"status":")") + (report.healthy ? "ok" : "waiting") + R"(","plugins":[)";
    const char* separator = "";
    for (const PluginStatus& plugin : all) {
        report.json += separator + to_json(plugin);
        separator = ",";
    }
    report.json += "]}";
    return report;
}

} // namespace zorbd
