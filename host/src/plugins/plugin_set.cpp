// SPDX-License-Identifier: Apache-2.0
#include "plugins/plugin_set.h"

#include <algorithm>
#include <stdexcept>

#include "plugins/discovery.h"
#include "system/message_log.h"
#include "zeb/api/CallbackMethod.h"

namespace zorbd {
namespace {

/// JSON-RPC keeps these names for itself.
bool is_reserved(const std::string& name)
{
    return name.compare(0, 4, "rpc.") == 0;
}

void log_reserved(const std::string& file, const std::string& method)
{
    log_message("plug-in " + file + ": its method " + method +
                " is not served, because names that begin with rpc. are reserved");
}

} // namespace

PluginSet::PluginSet(const std::vector<std::string>& files, BindingPauses pauses, bool check_params)
    : m_check_params(check_params)
{
    for (const std::string& file : files)
        m_plugins.push_back(std::make_unique<Plugin>(file, pauses));
    m_offers.resize(m_plugins.size());
    m_bound.resize(m_plugins.size());
    publish(make_table(m_offers, m_bound));
}

PluginSet::~PluginSet()
{
    release();
    while (!m_plugins.empty())
        m_plugins.pop_back();
}

void PluginSet::set_servers(std::vector<std::string> servers)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_servers = std::move(servers);
    publish(make_table(m_offers, m_bound));
}

void PluginSet::start()
{
    for (std::size_t i = 0; i < m_plugins.size(); ++i)
        m_plugins[i]->start([this, i](zeb::api::KX_RPCHandler& handler) { take_offer(i, handler); });
}

void PluginSet::stop_binding()
{
    for (const auto& plugin : m_plugins)
        plugin->stop_binding();
}

bool PluginSet::wait_binding_over(std::chrono::steady_clock::time_point deadline)
{
    return std::all_of(m_plugins.begin(), m_plugins.end(),
                       [deadline](const auto& plugin) { return plugin->wait_binding_over(deadline); });
}

void PluginSet::release()
{
    std::for_each(m_plugins.rbegin(), m_plugins.rend(), [](const auto& plugin) { plugin->release(); });
}

MethodLookup PluginSet::find(const std::string& name) const
{
    const Table& now = table();
    const auto found = now.methods.find(name);
    if (found == now.methods.end())
        return {nullptr, nullptr, nullptr, !now.all_bound};
    return {found->second.method, &m_plugins[found->second.plugin]->file(), found->second.params.get(),
            false};
}

std::shared_ptr<const std::string> PluginSet::discovery_document() const
{
    return table().document;
}

std::vector<PluginStatus> PluginSet::status() const
{
    return table().plugins;
}

/// The caller holds m_mutex, or is the constructor.
void PluginSet::publish(std::unique_ptr<const Table> table)
{
    m_tables.push_back(std::move(table));
    m_table.store(m_tables.back().get(), std::memory_order_release);
}

void PluginSet::take_offer(std::size_t index, const zeb::api::KX_RPCHandler& handler)
{
    const std::string& file = m_plugins[index]->file();
    const Offer offer = make_offer(file, handler);

    std::unique_lock<std::mutex> lock(m_mutex);
    m_offers[index] = offer;
    m_bound[index] = true;
    publish(make_table(m_offers, m_bound));
    const Table& published = table();
    const std::vector<Offer> offers = m_offers;
    lock.unlock();

    log_message("plug-in " + file + " is bound and offers " + std::to_string(offer.size()) +
                (offer.size() == 1 ? " method" : " methods"));
    log_conflicts(published, offers, index);
}

PluginSet::Offer PluginSet::make_offer(const std::string& file, const zeb::api::KX_RPCHandler& handler) const
{
    const DescriptionFile described(file);
    Offer offer;
    for (zeb::api::CallbackMethod* method : handler.GetMethods()) {
        const std::string name = method->GetName();
        if (is_reserved(name))
            log_reserved(file, name);
        else
            offer.push_back(make_offered(described, *method));
    }
    return offer;
}

PluginSet::OfferedMethod PluginSet::make_offered(const DescriptionFile& described,
                                                 zeb::api::CallbackMethod& method) const
{
    const std::string name = method.GetName();
    const strict_json::JsonValue description = describe_method(name, method, described.method(name));
    const bool is_described = described.method(name) != nullptr;
    std::shared_ptr<const ParamCheck> params;
    try {
        if (m_check_params && is_described)
            params = std::make_shared<const ParamCheck>(strict_json::member(description.get(), "params"));
    } catch (const std::invalid_argument& error) {
        log_message("parameters of " + name + " are not checked: " + error.what());
    }
    return {name, &method, strict_json::json_text(description.get()), std::move(params)};
}

std::unique_ptr<const PluginSet::Table> PluginSet::make_table(const std::vector<Offer>& offers,
                                                              const std::vector<bool>& bound) const
{
    auto made = std::make_unique<Table>();
    std::vector<std::string> descriptions;
    for (std::size_t i = 0; i < offers.size(); ++i) {
        PluginStatus status{m_plugins[i]->file(), bound[i], 0};
        for (const OfferedMethod& offered : offers[i])
            if (made->methods.try_emplace(offered.name, ServedMethod{offered.method, i, offered.params})
                    .second) {
                descriptions.push_back(offered.description);
                ++status.methods;
            }
        made->plugins.push_back(std::move(status));
    }
    made->document = std::make_shared<const std::string>(openrpc_document(descriptions, m_servers));
    made->all_bound = std::find(bound.begin(), bound.end(), false) == bound.end();
    return made;
}

void PluginSet::log_conflicts(const Table& table, const std::vector<Offer>& offers,
                              std::size_t newcomer) const
{
    for (std::size_t i = 0; i < offers.size(); ++i)
        for (const OfferedMethod& offered : offers[i]) {
            const std::size_t server = table.methods.at(offered.name).plugin;
            if (server != i && (server == newcomer || i == newcomer))
                log_message("plug-in " + m_plugins[i]->file() + ": its method " + offered.name +
                            " is not served, because plug-in " + m_plugins[server]->file() +
                            ", which was named before it, offers one of that name");
        }
}

} // namespace zorbd
