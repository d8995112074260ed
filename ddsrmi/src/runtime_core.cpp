// SPDX-License-Identifier: Apache-2.0
#include "runtime_core.h"

#include <algorithm>
#include <map>
#include <utility>

#include "client/request_channel.h"
#include "dds/clock_step_watch.h"
#include "dds/lease.h"
#include "dds/protection.h"
#include "dds/undecodable_samples.h"
#include "ddsrmi/exceptions.h"
#include "report.h"
#include "server/admission.h"
#include "server/request_team.h"
#include "server/served_interface.h"

namespace org::opensplice::DDS_RMI {

namespace {

// Never destroyed: a runtime that is still up when the process ends is ended with it.
struct Cores
{
    std::mutex mutex;
    std::map<dds_domainid_t, std::shared_ptr<RuntimeCore>> by_domain; // guarded by mutex
};

Cores& all_cores()
{
    static auto& cores = *new Cores;
    return cores;
}

} // namespace

std::shared_ptr<RuntimeCore> RuntimeCore::for_domain(dds_domainid_t domain)
{
    Cores& cores = all_cores();
    const std::lock_guard lock(cores.mutex);
    auto& core = cores.by_domain[domain];
    if (core == nullptr)
        core = std::make_shared<RuntimeCore>(domain);
    return core;
}

std::vector<ServiceState> RuntimeCore::service_states()
{
    std::map<dds_domainid_t, std::shared_ptr<RuntimeCore>> cores;
    {
        const std::lock_guard lock(all_cores().mutex);
        cores = all_cores().by_domain;
    }
    std::vector<ServiceState> states;
    for (const auto& [domain, core] : cores)
        core->add_states_to(states);
    return states;
}

void RuntimeCore::add_states_to(std::vector<ServiceState>& states) const
{
    std::vector<std::weak_ptr<RequestChannel>> channels;
    {
        const std::lock_guard lock(m_mutex);
        channels = m_channels;
    }
    for (const auto& one : channels)
        if (const auto channel = one.lock())
            states.push_back({channel->service(), channel->is_connected()});
}

RuntimeCore::RuntimeCore(dds_domainid_t domain) : m_domain(domain) {}
RuntimeCore::~RuntimeCore() = default;

bool RuntimeCore::start(const RuntimeOptions& options, RuntimeHold& hold)
{
    const std::lock_guard lock(m_mutex);
    if (m_starts == 0) {
        count_undecodable_samples();
        try {
            m_participant = std::make_shared<Entity>(create_patient_participant(m_domain));
            m_clock_step_watch = std::make_unique<ClockStepWatch>(m_participant);
            m_admission = std::make_shared<Admission>(options.server_room);
        } catch (const INTERNAL_ERROR& error) {
            report(std::string(error.what()) + " (" + advice_for_configuration() + ")");
            return false;
        }
        report_protection();
    }
    m_options = options;
    ++m_starts;
    ++hold.starts;
    hold.has_ever_started = true;
    return true;
}

bool RuntimeCore::stop(RuntimeHold& hold)
{
    std::unique_lock lock(m_mutex);
    unsigned& starts = hold.has_ever_started ? hold.starts : m_starts_left_behind;
    if (starts == 0)
        return false;
    --starts;
    if (--m_starts == 0)
        go_down(lock);
    return true;
}

void RuntimeCore::leave(const RuntimeHold& hold)
{
    const std::lock_guard lock(m_mutex);
    m_starts_left_behind += hold.starts;
}

// What is closed waits for foreign code to end, so it is closed outside the lock.
void RuntimeCore::go_down(std::unique_lock<std::mutex>& lock)
{
    const auto channels = std::exchange(m_channels, {});
    const auto services = std::exchange(m_services, {});
    const auto participant = std::exchange(m_participant, nullptr);
    const auto clock_step_watch = std::exchange(m_clock_step_watch, nullptr);
    m_serving_all = false;
    lock.unlock();
    m_services_changed.notify_all();

    for (const auto& one : channels)
        if (const auto channel = one.lock())
            channel->close();
    for (const Service& service : services)
        if (service.served != nullptr)
            service.served->close(true);
}

bool RuntimeCore::is_up() const
{
    const std::lock_guard lock(m_mutex);
    return m_starts > 0;
}

std::shared_ptr<Entity> RuntimeCore::participant() const
{
    const std::lock_guard lock(m_mutex);
    return m_participant;
}

RuntimeOptions RuntimeCore::options() const
{
    const std::lock_guard lock(m_mutex);
    return m_options;
}

unsigned RuntimeCore::timeout() const
{
    const std::lock_guard lock(m_mutex);
    return m_timeout_ms;
}

void RuntimeCore::set_timeout(unsigned milliseconds)
{
    const std::lock_guard lock(m_mutex);
    m_timeout_ms = milliseconds;
}

ServerThreadingPolicy RuntimeCore::server_threading() const
{
    const std::lock_guard lock(m_mutex);
    return m_options.server_threading;
}

void RuntimeCore::set_server_threading(const ServerThreadingPolicy& policy)
{
    const std::lock_guard lock(m_mutex);
    m_options.server_threading = policy;
}

void RuntimeCore::add(const std::shared_ptr<RequestChannel>& channel)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto gone = [](const std::weak_ptr<RequestChannel>& one) { return one.expired(); };
        m_channels.erase(std::remove_if(m_channels.begin(), m_channels.end(), gone), m_channels.end());
        if (m_starts > 0) {
            m_channels.push_back(channel);
            return;
        }
    }
    channel->close();
}

bool RuntimeCore::register_interface(const shared_ptr<CInterfaceSkeleton>& implementation,
                                     const std::string& name, DDS::Long instance)
{
    const std::lock_guard lock(m_mutex);
    if (m_starts == 0) {
        report("cannot register service '" + name + "': the runtime has not been started");
        return false;
    }
    if (find(name, instance) != m_services.end()) {
        report("cannot register service '" + name + "', instance " + std::to_string(instance) +
               ": it is registered already");
        return false;
    }
    m_services.push_back({implementation, name, instance, nullptr});
    if (m_serving_all)
        serve(m_services.back());
    return true;
}

bool RuntimeCore::unregister_interface(const std::string& name, DDS::Long instance)
{
    Service gone{};
    {
        const std::lock_guard lock(m_mutex);
        const auto found = find(name, instance);
        if (found == m_services.end())
            return false;
        gone = *found;
        m_services.erase(found);
    }
    m_services_changed.notify_all();
    if (gone.served != nullptr)
        gone.served->close(true);
    return true;
}

void RuntimeCore::run_all()
{
    std::unique_lock lock(m_mutex);
    if (m_starts == 0)
        throw BAD_INV_ORDER("services can be run only while the runtime is started");
    m_serving_all = true;
    for (Service& service : m_services)
        serve(service);
    m_services_changed.wait(lock, [this] { return !m_serving_all; });
}

void RuntimeCore::run(const std::string& name)
{
    std::unique_lock lock(m_mutex);
    const auto is_named = [&name](const Service& service) { return service.name == name; };
    if (std::none_of(m_services.begin(), m_services.end(), is_named))
        throw BAD_PARAM(("no service '" + name + "' is registered").c_str());
    for (Service& service : m_services)
        if (is_named(service))
            serve(service);
    m_services_changed.wait(lock, [&] { return !any_served(&name); });
}

void RuntimeCore::shutdown_all(bool wait)
{
    Served withdrawn;
    {
        const std::lock_guard lock(m_mutex);
        m_serving_all = false;
        withdrawn = withdraw(nullptr);
    }
    m_services_changed.notify_all();
    for (const auto& served : withdrawn)
        served->close(wait);
}

void RuntimeCore::shutdown(const std::string& name)
{
    Served withdrawn;
    {
        const std::lock_guard lock(m_mutex);
        withdrawn = withdraw(&name);
    }
    m_services_changed.notify_all();
    for (const auto& served : withdrawn)
        served->close(true);
}

bool RuntimeCore::is_running() const
{
    const std::lock_guard lock(m_mutex);
    return any_served(nullptr);
}

bool RuntimeCore::is_running(const std::string& name) const
{
    const std::lock_guard lock(m_mutex);
    return any_served(&name);
}

void RuntimeCore::serve(Service& service)
{
    if (service.served != nullptr)
        return;
    service.served =
        std::make_shared<ServedInterface>(m_participant, team_for(m_options.server_threading), m_admission,
                                          service.implementation, service.name, service.instance);
}

std::shared_ptr<RequestTeam> RuntimeCore::team_for(const ServerThreadingPolicy& policy)
{
    if (policy.model == ServerThreadingPolicy::TPS)
        return std::make_shared<RequestTeam>(policy.pool_size);
    const unsigned size = policy.model == ServerThreadingPolicy::ST ? 1 : policy.pool_size;
    auto team = m_shared_team.lock();
    if (team == nullptr || team->size() != size) {
        team = std::make_shared<RequestTeam>(size);
        m_shared_team = team;
    }
    return team;
}

// Null for all names.
RuntimeCore::Served RuntimeCore::withdraw(const std::string* name)
{
    Served withdrawn;
    for (Service& service : m_services)
        if (service.served != nullptr && (name == nullptr || service.name == *name))
            withdrawn.push_back(std::exchange(service.served, nullptr));
    return withdrawn;
}

bool RuntimeCore::any_served(const std::string* name) const
{
    return std::any_of(m_services.begin(), m_services.end(), [name](const Service& service) {
        return service.served != nullptr && (name == nullptr || service.name == *name);
    });
}

RuntimeCore::Services::iterator RuntimeCore::find(const std::string& name, DDS::Long instance)
{
    return std::find_if(m_services.begin(), m_services.end(), [&](const Service& service) {
        return service.name == name && service.instance == instance;
    });
}

} // namespace org::opensplice::DDS_RMI
