// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_UNDECODABLE_SAMPLES_H
#define DDSRMI_DDS_UNDECODABLE_SAMPLES_H

namespace org::opensplice::DDS_RMI {

/// From now on Cyclone's messages about samples that it cannot decode are counted and seldom written, for
/// whoever can reach a topic can send as many as he likes. All its other messages go to standard error as
/// they come. For the whole process; any thread.
void count_undecodable_samples();

} // namespace org::opensplice::DDS_RMI

#endif
