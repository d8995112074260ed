// SPDX-License-Identifier: Apache-2.0
#include "plugins/health_report.h"

#include <algorithm>
#include <vector>

#include "plugins/plugin_load.h"
#include "plugins/plugin_set.h"
#include "json/json_quote.h"

namespace zorbd {
namespace {

/// A plug-in and how many of its calls take too long.
struct LoadedPlugin
{
    PluginStatus status;
    std::size_t stuck;
};

std::string to_json(const LoadedPlugin& loaded)
{
    const PluginStatus& plugin = loaded.status;
    return R"({"file":)" + quoted_json(plugin.file) + R"(,"bound":)" + (plugin.bound ? "true" : "false") +
           R"(,"methods":)" + std::to_string(plugin.methods) + R"(,"stuck":)" + std::to_string(loaded.stuck) +
           '}';
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

HealthReport report_health(const PluginSet& plugins, const PluginLoads& loads,
                           const std::vector<StreamHealth>& streams)
{
    std::vector<LoadedPlugin> all;
    for (PluginStatus& status : plugins.status()) {
        const std::size_t stuck = loads.of(status.file).stuck();
        all.push_back({std::move(status), stuck});
    }
    const bool are_bound =
        std::all_of(all.begin(), all.end(), [](const LoadedPlugin& plugin) { return plugin.status.bound; });
    const bool is_stuck =
        std::any_of(all.begin(), all.end(), [](const LoadedPlugin& plugin) { return plugin.stuck != 0; });
    const char* status = is_stuck ? "stuck" : are_bound ? "ok" : "waiting";
    return {are_bound && !is_stuck, std::string(R"({"status":")") + status + R"(","plugins":)" +
                                        to_json(all) + R"(,"streams":)" + to_json(streams) + '}'};
}

} // namespace zorbd
