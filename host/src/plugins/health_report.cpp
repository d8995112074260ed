// SPDX-License-Identifier: Apache-2.0
#include "plugins/health_report.h"

#include <algorithm>
#include <vector>

#include <zeb/api/mdw/service_state.h>

#include "plugins/plugin_load.h"
#include "plugins/plugin_set.h"
#include "json/json_quote.h"

namespace zorbd {

using strict_json::quoted_json;

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

std::string to_json(const zeb::api::mdw::ServiceState& service)
{
    return R"({"name":)" + quoted_json(service.name) + R"(,"reachable":)" +
           (service.reachable ? "true" : "false") + '}';
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
    const std::vector<zeb::api::mdw::ServiceState> services = zeb::api::mdw::serviceStates();
    const bool are_reachable =
        std::all_of(services.begin(), services.end(), [](const auto& service) { return service.reachable; });
    const bool is_ready = are_bound && are_reachable;
    const char* status = is_stuck ? "stuck" : is_ready ? "ok" : "waiting";
    return {is_ready && !is_stuck, std::string(R"({"status":")") + status + R"(","plugins":)" + to_json(all) +
                                       R"(,"services":)" + to_json(services) + R"(,"streams":)" +
                                       to_json(streams) + '}'};
}

} // namespace zorbd
