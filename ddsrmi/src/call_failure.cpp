// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/call_failure.h"

namespace org::opensplice::DDS_RMI {

CallFailureHandler::~CallFailureHandler() = default;

} // namespace org::opensplice::DDS_RMI
