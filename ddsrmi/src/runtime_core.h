// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_RUNTIME_CORE_H
#define DDSRMI_RUNTIME_CORE_H

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "dds/entity.h"
#include "ddsrmi/interface_skeleton.h"
#include "ddsrmi/service_state.h"
#include "ddsrmi/shared_ptr.h"
#include "runtime_options.h"

namespace org::opensplice::DDS_RMI {

class Admission;
class ClockStepWatch;
class RequestChannel;
class RequestTeam;
class ServedInterface;

/// The one RMI runtime that the process has for a DDS domain: up while any hold has started it. It owns the
/// domain participant, knows the open proxies, and keeps the registered services.
///
/// Its mutex guards all its fields and every RuntimeHold. It is never held while a thread is waited for
/// or foreign code runs: what is to be closed is moved out first.
class RuntimeCore : public std::enable_shared_from_this<RuntimeCore>
{
public:
    /// Always the same object for the same domain.
    static std::shared_ptr<RuntimeCore> for_domain(dds_domainid_t domain);

    /// Of every proxy of the process.
    static std::vector<ServiceState> service_states();

    explicit RuntimeCore(dds_domainid_t domain);
    ~RuntimeCore();
    RuntimeCore(const RuntimeCore&) = delete;
    RuntimeCore& operator=(const RuntimeCore&) = delete;

    /// Counts one more start, in `hold` too; the first brings the runtime up. False when it cannot be.
    bool start(const RuntimeOptions& options, RuntimeHold& hold);
    /// Takes one start back, out of `hold`; a hold that has never started takes from those that holds have
    /// left behind. False when there is none.
    bool stop(RuntimeHold& hold);
    /// `hold` goes and leaves behind what it has not stopped.
    void leave(const RuntimeHold& hold);

    bool is_up() const;
    /// Null while the runtime is down.
    std::shared_ptr<Entity> participant() const;
    RuntimeOptions options() const;

    unsigned timeout() const;
    void set_timeout(unsigned milliseconds);
    ServerThreadingPolicy server_threading() const;
    void set_server_threading(const ServerThreadingPolicy& policy);

    /// Has a proxy's channel closed when the runtime ends; at once when it has ended already.
    void add(const std::shared_ptr<RequestChannel>& channel);

    bool register_interface(const shared_ptr<CInterfaceSkeleton>& implementation, const std::string& name,
                            DDS::Long instance);
    bool unregister_interface(const std::string& name, DDS::Long instance);

    void run_all();
    void run(const std::string& name);
    void shutdown_all(bool wait);
    void shutdown(const std::string& name);
    bool is_running() const;
    bool is_running(const std::string& name) const;

private:
    struct Service
    {
        shared_ptr<CInterfaceSkeleton> implementation;
        std::string name;
        DDS::Long instance;
        std::shared_ptr<ServedInterface> served; // null while it is not being served
    };
    using Services = std::vector<Service>;
    using Served = std::vector<std::shared_ptr<ServedInterface>>;

    void add_states_to(std::vector<ServiceState>& states) const;
    void go_down(std::unique_lock<std::mutex>& lock);
    void serve(Service& service);
    std::shared_ptr<RequestTeam> team_for(const ServerThreadingPolicy& policy);
    Served withdraw(const std::string* name);
    bool any_served(const std::string* name) const;
    Services::iterator find(const std::string& name, DDS::Long instance);

    const dds_domainid_t m_domain;
    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_services_changed;
    unsigned m_starts = 0;
    unsigned m_starts_left_behind = 0;
    unsigned m_timeout_ms = 600'000;
    RuntimeOptions m_options;
    std::shared_ptr<Entity> m_participant;
    std::unique_ptr<ClockStepWatch> m_clock_step_watch;
    std::shared_ptr<Admission> m_admission;
    std::vector<std::weak_ptr<RequestChannel>> m_channels;
    Services m_services;
    bool m_serving_all = false;
    std::weak_ptr<RequestTeam> m_shared_team;
};

} // namespace org::opensplice::DDS_RMI

#endif
