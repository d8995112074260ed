// SPDX-License-Identifier: Apache-2.0
// A plug-in that needs a function which nobody has.
#include "zeb/api/KX_RPCHandler.h"

extern "C" int nobody_has_this();

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return nobody_has_this() != 0 ? nullptr : new zeb::api::KX_RPCHandler;
}
