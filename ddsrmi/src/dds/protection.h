// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_PROTECTION_H
#define DDSRMI_DDS_PROTECTION_H

#include <string>

namespace org::opensplice::DDS_RMI {

/// Whether DDS Security is in force: whether Cyclone has loaded its authentication plug-in. To be asked while
/// there is a participant.
bool is_protected();

/// Says on standard error whether DDS is protected; the first call in a process alone does. Needs a
/// participant.
void report_protection();

/// What to look at when Cyclone's configuration does not let a participant be made; one sentence.
std::string advice_for_configuration();

} // namespace org::opensplice::DDS_RMI

#endif
