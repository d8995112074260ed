// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_HANDLER_FIXTURE_H
#define TESTS_CONFORMANCE_HANDLER_FIXTURE_H

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <random>
#include <string>

#include "fakes/allocation_probe.h"
#include "fakes/captured_output.h"
#include "fakes/framework_probe.h"
#include "fakes/plugin_access.h"
#include "fakes/recording.h"
#include "fakes/recording_proxy.h"
#include "fakes/rmi_layer.h"
#include "thrown.h"

namespace conformance {

/// A proxy of some other interface.
class OtherProxy : public org::opensplice::DDS_RMI::CInterfaceProxy
{
public:
    OtherProxy() : CInterfaceProxy(org::opensplice::DDS_RMI::ProxySeed())
    {
        name_object(this, "other proxy");
    }
    ~OtherProxy() override { record("lookup", "other proxy released"); }
};

/// The number that a proxy gets when the random device gives `seed`.
inline std::string instance_for(unsigned seed)
{
    std::mt19937 engine(seed);
    return std::to_string(std::uniform_int_distribution<std::int32_t>(1, 10000)(engine));
}

/// A test that makes handlers or holders on the recording RMI layer, whose lookup finds m_proxy unless told
/// otherwise.
class LookupTest : public testing::Test
{
public:
    LookupTest()
    {
        rmi_layer() = RmiLayer();
        m_proxy = new RecordingProxy;
        rmi_layer().found = org::opensplice::DDS_RMI::CInterfaceProxy_ref(m_proxy);
        set_random_device_value(seed);
    }

    ~LookupTest() override
    {
        fail_allocation(0);
        rmi_layer() = RmiLayer();
        free_arrays_left();
    }

protected:
    static constexpr unsigned seed = 20231;

    /// What happens while `action` runs.
    template <class Action>
    static Events events_of(const Action& action)
    {
        const Recording recording;
        action();
        return recording.all();
    }

    CapturedOutput m_output;
    /// Held by the layer's answer and by whoever finds it.
    RecordingProxy* m_proxy;
    const std::string m_instance = instance_for(seed);
};

} // namespace conformance

#endif
