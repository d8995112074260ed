// SPDX-License-Identifier: Apache-2.0
// Compiles and links, that is all.
#include <VarnelRMI_InterfaceProxy.h>

int main()
{
    DDS_RMI::VarnelRMI::VarnelRMIServiceInterfaceProxy::_register_service_info();
}
