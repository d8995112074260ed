// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/interface_skeleton.h"

namespace org::opensplice::DDS_RMI {

CInterfaceSkeleton::~CInterfaceSkeleton() = default;

} // namespace org::opensplice::DDS_RMI
