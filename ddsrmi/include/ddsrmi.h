// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_H
#define DDSRMI_H

// Everything that a client or a server of the RMI layer needs.

#include "ddsrmi/async_reply_handler.h"
#include "ddsrmi/call_failure.h"
#include "ddsrmi/dds_service.h"
#include "ddsrmi/dds_types.h"
#include "ddsrmi/exceptions.h"
#include "ddsrmi/interface_proxy.h"
#include "ddsrmi/interface_registry.h"
#include "ddsrmi/interface_skeleton.h"
#include "ddsrmi/ref_counted.h"
#include "ddsrmi/runtime.h"
#include "ddsrmi/shared_ptr.h"

#endif
