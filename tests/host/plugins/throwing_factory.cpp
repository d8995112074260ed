// SPDX-License-Identifier: Apache-2.0
// A plug-in whose factory always throws.
#include <stdexcept>

#include "zeb/api/KX_RPCHandler.h"

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    throw std::runtime_error("the factory\nis out of order");
}
