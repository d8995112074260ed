// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_RUNTIME_OPTIONS_H
#define DDSRMI_RUNTIME_OPTIONS_H

#include <chrono>
#include <optional>

#include "ddsrmi/runtime.h"
#include "server/admission.h"

namespace org::opensplice::DDS_RMI {

/// What the arguments of CRuntime::start set.
struct RuntimeOptions
{
    /// Nothing waits for ever.
    std::optional<std::chrono::seconds> discovery_timeout = std::chrono::seconds(10);
    ServerThreadingPolicy server_threading{ServerThreadingPolicy::ST, 1};
    /// For requests that wait to be run, of all clients.
    RoomUsed server_room{800'000, std::uint64_t{256} << 20U};

    std::chrono::steady_clock::time_point discovery_deadline(std::chrono::steady_clock::time_point now) const;
};

/// Nothing, with a line on standard error, for an unknown option or a bad value.
std::optional<RuntimeOptions> parse_runtime_options(int argc, const char* const* argv);

} // namespace org::opensplice::DDS_RMI

#endif
