// SPDX-License-Identifier: Apache-2.0
#include "dds/entity.h"

#include "ddsrmi/exceptions.h"

namespace org::opensplice::DDS_RMI {

dds_return_t check(dds_return_t result, const std::string& what)
{
    if (result < 0)
        throw INTERNAL_ERROR((what + ": " + dds_strretcode(-result)).c_str(), result);
    return result;
}

} // namespace org::opensplice::DDS_RMI
