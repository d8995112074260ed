// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLOCK_H
#define DDSRMI_CLOCK_H

#include <chrono>

namespace org::opensplice::DDS_RMI {

/// The clock of every wait: the system's own may jump.
using Clock = std::chrono::steady_clock;

} // namespace org::opensplice::DDS_RMI

#endif
