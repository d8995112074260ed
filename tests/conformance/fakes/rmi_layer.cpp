// SPDX-License-Identifier: Apache-2.0
#include "rmi_layer.h"

#include <mutex>
#include <stdexcept>
#include <string>

#include "ddsrmi/service_state.h"
#include "recording.h"

namespace conformance {
namespace {

std::mutex names_mutex;

// Never destroyed, because counted objects may be static.
std::map<const org::opensplice::DDS_RMI::RefCounted*, std::string>& names() // guarded by names_mutex
{
    static auto& all = *new std::map<const org::opensplice::DDS_RMI::RefCounted*, std::string>;
    return all;
}

std::string name_of(const org::opensplice::DDS_RMI::RefCounted* object)
{
    const std::lock_guard lock(names_mutex);
    const auto found = names().find(object);
    return found == names().end() ? "handler" : found->second;
}

void forget(const org::opensplice::DDS_RMI::RefCounted* object)
{
    const std::lock_guard lock(names_mutex);
    names().erase(object);
}

} // namespace

RmiLayer& rmi_layer()
{
    static auto& layer = *new RmiLayer;
    return layer;
}

void reach(const std::string& step)
{
    const auto found = rmi_layer().at.find(step);
    if (found != rmi_layer().at.end())
        found->second();
}

void name_object(const org::opensplice::DDS_RMI::RefCounted* object, const std::string& name)
{
    const Unobserved unobserved;
    const std::lock_guard lock(names_mutex);
    names()[object] = name;
}

} // namespace conformance

namespace org {
namespace opensplice {
namespace DDS_RMI {

using conformance::reach;
using conformance::record;
using conformance::Unobserved;

namespace {

class RecordedMutex : public SDKMutex
{
public:
    RecordedMutex() { record("mutex", "made"); }
    ~RecordedMutex() override { record("mutex", "destroyed"); }
    int initialize() override { return 0; }

    int lock() override
    {
        m_mutex.lock();
        return 0;
    }

    int unlock() override
    {
        m_mutex.unlock();
        return 0;
    }

private:
    std::mutex m_mutex;
};

void record_count(const RefCounted* object, int count)
{
    record("handle", conformance::name_of(object) + " " + std::to_string(count));
}

} // namespace

SDKMutex::~SDKMutex() = default;

SDKMutex* SDKMutexFactory::createSDKMutex()
{
    const Unobserved unobserved;
    reach("mutex");
    return new RecordedMutex;
}

RefCounted::RefCounted() : m_mutex(SDKMutexFactory::createSDKMutex()), m_refcount(0) {}

RefCounted::~RefCounted()
{
    const Unobserved unobserved;
    conformance::forget(this);
    delete m_mutex;
}

void RefCounted::inc_refcount()
{
    const Unobserved unobserved;
    m_mutex->lock();
    record_count(this, ++m_refcount);
    m_mutex->unlock();
}

void RefCounted::dec_refcount()
{
    int count = 0;
    {
        const Unobserved unobserved;
        m_mutex->lock();
        count = --m_refcount;
        record_count(this, count);
        m_mutex->unlock();
    }
    if (count == 0)
        delete this;
}

CRuntime_ref CRuntime::getDefaultRuntime()
{
    const Unobserved unobserved;
    record("runtime", "obtain");
    reach("obtain");
    return CRuntime_ref(new CRuntime(nullptr));
}

CRuntime::CRuntime(const std::shared_ptr<RuntimeCore>&) : m_hold()
{
    conformance::name_object(this, "runtime");
}

CRuntime::~CRuntime()
{
    record("runtime", "released");
}

bool CRuntime::start(int count, const char* arguments[])
{
    const Unobserved unobserved;
    std::string options;
    for (int i = 1; i < count; ++i)
        options += std::string(" ") + arguments[i];
    record("runtime", "start" + options);
    reach("start");
    return true;
}

bool CRuntime::stop()
{
    record("runtime", "stop");
    reach("stop");
    return true;
}

DDS_Service_Impl DDS_Service::DDS_ServiceImpl;

bool DDS_Service_Impl::isUsable() const
{
    const Unobserved unobserved;
    record("lookup", "ready?");
    reach("ready");
    return conformance::rmi_layer().is_usable;
}

CInterfaceRegistry_ref DDS_Service_Impl::getRegistry() const
{
    const Unobserved unobserved;
    record("lookup", "registry");
    reach("registry");
    return CInterfaceRegistry_ref(new CInterfaceRegistry(nullptr));
}

CInterfaceRegistry::CInterfaceRegistry(const std::shared_ptr<RuntimeCore>&)
{
    conformance::name_object(this, "registry");
}

CInterfaceRegistry::~CInterfaceRegistry()
{
    record("lookup", "registry released");
}

CInterfaceProxy_ref CInterfaceRegistry::resolve(const std::string& server, const std::string& proxy,
                                                DDS::Long server_instance, DDS::Long proxy_instance)
{
    const Unobserved unobserved;
    record("lookup", "resolve(" + server + ", " + proxy + ", " + std::to_string(server_instance) + ", " +
                         std::to_string(proxy_instance) + ")");
    reach("resolve");
    return conformance::rmi_layer().found;
}

std::vector<ServiceState> service_states()
{
    return {};
}

CInterfaceProxy::CInterfaceProxy(const ProxySeed&) {}
CInterfaceProxy::~CInterfaceProxy() = default;

void CInterfaceProxy::send_request(std::size_t, const Encoder&, CAsyncReplyHandlerImpl*)
{
    throw std::logic_error("an operation that the recording proxy does not take");
}

void CInterfaceProxy::send_request_and_wait(std::size_t, const Encoder&,
                                            const shared_ptr<CAsyncReplyHandlerImpl>&)
{
    throw std::logic_error("an operation that the recording proxy does not take");
}

ProxyRegistration::ProxyRegistration(const InterfaceInfo& interface_info, ProxyFactory factory)
    : m_interface(interface_info), m_factory(factory)
{
}

ProxyRegistration::~ProxyRegistration() = default;

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org
