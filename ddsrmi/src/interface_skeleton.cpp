// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/interface_skeleton.h"

namespace org::opensplice::DDS_RMI {

ReplySample::~ReplySample() = default;

CInterfaceSkeleton::~CInterfaceSkeleton() = default;

} // namespace org::opensplice::DDS_RMI
