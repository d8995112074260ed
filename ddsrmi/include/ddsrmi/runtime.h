// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_RUNTIME_H
#define DDSRMI_RUNTIME_H

#include <memory>
#include <string>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/interface_registry.h"
#include "ddsrmi/ref_counted.h"
#include "ddsrmi/shared_ptr.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

class RuntimeCore;

/// On how many threads a server runs its implementations.
struct ServerThreadingPolicy
{
    /// How threads are given to services.
    enum Model {
        ST,  ///< one thread for all services
        MT,  ///< a pool of threads for all services
        TPS, ///< a pool of threads for each service
    };
    Model model;        ///< ST unless set
    unsigned pool_size; ///< threads of a pool; 1 with ST
};

/// How often one CRuntime has started the runtime and not stopped it. Guarded by the runtime's own lock.
struct RuntimeHold
{
    unsigned starts;       ///< not taken back by stop
    bool has_ever_started; ///< a hold that never did may take others' starts back
};

/// One user's hold on the RMI runtime of a DDS domain. Every getDefaultRuntime() and getRuntime() gives a
/// hold of its own on the one runtime that the process has for that domain; the runtime is up while any hold
/// has started it. Any thread may call any operation.
class CRuntime : public virtual RefCounted
{
public:
    /// The runtime of the domain that Cyclone DDS's configuration names.
    static shared_ptr<CRuntime> getDefaultRuntime();
    /// The runtime of the DDS domain with that number.
    static shared_ptr<CRuntime> getRuntime(DDS::Long domain);

    /// For getDefaultRuntime and getRuntime.
    explicit CRuntime(const std::shared_ptr<RuntimeCore>& core);
    /// Starts that were not stopped stay; a hold that never started any can stop them.
    ~CRuntime() override;

    /// Brings the runtime up, or counts one more user of it. `argv` holds options, after an optional program
    /// name (no leading dash):
    ///
    ///     --RMIClientThreadingModel=ST|MT        several threads may share a proxy with either
    ///     --RMIServiceDiscoveryTimeout=SECONDS   how long a lookup waits; -1 for ever; 10 unless given
    ///     --RMIServerThreadingModel=ST|MT|TPS[,POOL_SIZE]
    ///     --RMIDurability=yes|no                 announcements reach clients that start later with either
    ///     --RMIServerQueueBytes=MIB              how much may wait to be run, of all clients; each may have
    ///                                            a quarter of it; 256 unless given
    ///     --RMIServerQueueRequests=NUMBER        the same in requests; 800000 unless given
    ///
    /// An unknown option or a bad value, or no DDS domain to be had, is said on standard error and gives
    /// false; then nothing is counted.
    bool start(int argc, const char* argv[]);

    /// Takes one start of this hold back; the last of all ends the runtime: its proxies' outstanding requests
    /// are given up, its services withdrawn, and no reply hook or implementation is running any more (but the
    /// one that called this). False, and harmless, when there is nothing to take back.
    bool stop();

    /// Whether the runtime is up.
    bool isUsable();

    /// Serves every registered service, also those registered later, until shutdown.
    void run();
    /// Serves one registered service until it is shut down. Throws BAD_PARAM for an unknown one.
    void run(std::string service);
    /// Ends run(); with `wait`, returns when the operations that are being run have ended.
    void shutdown(bool wait = true);
    /// Ends run(service); returns when its operations that are being run have ended.
    void shutdown(std::string service);
    /// The same; without it a literal would count as a bool.
    void shutdown(const char* service);
    /// Whether any service is being served.
    bool is_running();

    /// What lookups go through; it holds for as long as the runtime is up.
    CInterfaceRegistry_ref getRegistry();

    /// The reply timeout, in milliseconds, of proxies that are found from now on.
    void setTimeout(unsigned milliseconds);
    /// In milliseconds; 600,000 unless set.
    unsigned getTimeout();

    /// What was set last.
    ServerThreadingPolicy getServerThreadingPolicy();
    /// Holds for services that are run from now on.
    void setServerThreadingPolicy(const ServerThreadingPolicy& policy);

private:
    std::shared_ptr<RuntimeCore> m_core;
    RuntimeHold m_hold;
};

typedef shared_ptr<CRuntime> CRuntime_ref;

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
