// SPDX-License-Identifier: Apache-2.0
// Must not compile: it uses a name of the RMI layer that one provider alone has.
#include <ddsrmi.h>

bool is_up(const org::opensplice::DDS_RMI::DDS_Service_Impl& service)
{
    return service.isUsable();
}
