// SPDX-License-Identifier: Apache-2.0
// A plug-in whose factory returns no handler.
#include "zeb/api/KX_RPCHandler.h"

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return nullptr;
}
