// SPDX-License-Identifier: Apache-2.0
#include "plugins/health_report.h"

#include <algorithm>
#include <vector>

#include "plugins/plugin_set.h"
#include "json/json_quote.h"

namespace zorbd {
namespace {

std::string to_json(const PluginStatus& plugin)
{
    return R"({"file":)" + quoted_json(plugin.file) + R"(,"bound":)" + (plugin.bound ? "true" : "false") +
           R"(,"methods":)" + std::to_string(plugin.methods) + '}';
}

std::string to_json(const StreamHealth& stream)
{
    std::string json =
        R"({"name":)" + quoted_json(stream.name) + R"(,"dropped":)" + std::to_string(stream.dropped);
    if (!stream.trouble.empty())
        json += R"(,"trouble":)" + quoted_json(stream.trouble);
    return json + '}';
}

template <class Item>
std::string to_json(const std::vector<Item>& items)
{
    std::string list = "[";
    for (const Item& item : items)
        list += (list.size() == 1 ? "" : ",") + to_json(item);
    return list + ']';
}

} // namespace

HealthReport report_health(const PluginSet& plugins, const std::vector<StreamHealth>& streams)
{
    const std::vector<PluginStatus> all = plugins.status();
    HealthReport report;
    report.healthy =
        std::all_of(all.begin(), all.end(), [](const PluginStatus& plugin) { return plugin.bound; });
    report.json = std::string(R"({"status":")") + (report.healthy ? "ok" : "waiting") + R"(","plugins":)" +
                  to_json(all) + R"(,"streams":)" + to_json(streams) + '}';
    return report;
}

} // namespace zorbd
