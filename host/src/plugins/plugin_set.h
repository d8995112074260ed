// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PLUGIN_SET_H
#define ZORBD_PLUGIN_SET_H

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "plugins/description_file.h"
#include "plugins/method_directory.h"
#include "plugins/param_check.h"
#include "plugins/plugin.h"

namespace zorbd {

/// What is known of one plug-in.
struct PluginStatus
{
    std::string file;
    bool bound = false;
    std::size_t methods = 0; ///< that are served
};

/// The plug-ins of the process, and the directory of what they offer.
///
/// When two offer a method of one name, the one that was named first serves it, whichever was bound first.
class PluginSet : public MethodDirectory
{
public:
    /// Loads the files; throws PluginError for the first that cannot be loaded.
    PluginSet(const std::vector<std::string>& files, BindingPauses pauses, bool check_params = true);
    ~PluginSet() override;

    /// Says where the methods are served. To be called before start(), if at all.
    void set_servers(std::vector<std::string> servers);

    /// Starts to bind them all, each on a thread of its own. Throws std::system_error.
    void start();
    /// Makes no further attempt to bind; bound plug-ins stay callable. Does not wait.
    void stop_binding();
    /// Waits for attempts that still run; false when the deadline passes first.
    bool wait_binding_over(std::chrono::steady_clock::time_point deadline);
    /// Deletes the handlers, the last plug-in's first. No method may run any more.
    void release();

    MethodLookup find(const std::string& name) const override;
    std::shared_ptr<const std::string> discovery_document() const override;
    /// In the order in which they were given.
    std::vector<PluginStatus> status() const;

private:
    struct OfferedMethod
    {
        std::string name;
        zeb::api::CallbackMethod* method;
        std::string description;                  ///< its OpenRPC method object
        std::shared_ptr<const ParamCheck> params; ///< null when they are not checked
    };
    using Offer = std::vector<OfferedMethod>;

    struct ServedMethod
    {
        zeb::api::CallbackMethod* method;
        std::size_t plugin; ///< its index
        std::shared_ptr<const ParamCheck> params;
    };

    /// What is offered at one moment; never changed once it is published.
    struct Table
    {
        std::unordered_map<std::string, ServedMethod> methods;
        std::shared_ptr<const std::string> document;
        std::vector<PluginStatus> plugins;
        bool all_bound = false;
    };

    void take_offer(std::size_t index, const zeb::api::KX_RPCHandler& handler);
    Offer make_offer(const std::string& file, const zeb::api::KX_RPCHandler& handler) const;
    OfferedMethod make_offered(const DescriptionFile& described, zeb::api::CallbackMethod& method) const;
    const Table& table() const { return *m_table.load(std::memory_order_acquire); }
    void publish(std::unique_ptr<const Table> table);
    std::unique_ptr<const Table> make_table(const std::vector<Offer>& offers,
                                            const std::vector<bool>& bound) const;
    void log_conflicts(const Table& table, const std::vector<Offer>& offers, std::size_t newcomer) const;

    const bool m_check_params;
    std::vector<std::string> m_servers;             ///< the same from start() on
    std::vector<std::unique_ptr<Plugin>> m_plugins; ///< the same from construction to destruction
    std::mutex m_mutex;
    std::vector<Offer> m_offers; ///< one for each plug-in; guarded by m_mutex
    std::vector<bool> m_bound;   ///< one for each plug-in; guarded by m_mutex
    /// All that were ever published, a few more than there are plug-ins at most. They are kept so that a call
    /// can look its method up without a lock. Guarded by m_mutex.
    std::vector<std::unique_ptr<const Table>> m_tables;
    std::atomic<const Table*> m_table{nullptr}; ///< the last of them
};

} // namespace zorbd

#endif
