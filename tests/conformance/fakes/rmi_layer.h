// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_RMI_LAYER_H
#define TESTS_CONFORMANCE_RMI_LAYER_H

#include <ddsrmi.h>

#include <functional>
#include <map>
#include <string>

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// What a proxy is made from; here nothing.
struct ProxySeed
{
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

namespace conformance {

/// The RMI layer that the program is linked with in place of the real one: it records what it is asked, and
/// does what the test has written into it. Set it up before the plug-in runs.
struct RmiLayer
{
    using Step = std::function<void()>;

    /// What the runtime says of itself.
    bool is_usable = true;
    /// What the registry answers a lookup with; may be null.
    org::opensplice::DDS_RMI::CInterfaceProxy_ref found;
    /// Run when the step of that name has been recorded; may throw. The steps: "obtain", "start", "ready",
    /// "register", "registry", "resolve", "mutex", "call", "device", "method", "stop"; and "syslog", at each
    /// message.
    std::map<std::string, Step> at;
};

/// The one of this process.
RmiLayer& rmi_layer();

/// Runs what the test has written for this step.
void reach(const std::string& step);

/// What events call a counted object; "handler" unless told.
void name_object(const org::opensplice::DDS_RMI::RefCounted* object, const std::string& name);

} // namespace conformance

#endif
