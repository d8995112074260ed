// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_STAMP_H
#define TESTS_RMI_STAMP_H

#include "ddsrmi.h"

namespace drill {

/// What the operation stamp of the server with that instance number replies; different for every call.
inline DDS::LongLong stamp(DDS::Long instance, DDS::Long caller, DDS::Long number)
{
    constexpr DDS::LongLong callers = 1 << 16;
    constexpr DDS::LongLong numbers = DDS::LongLong{1} << 32;
    return (instance * callers + caller) * numbers + number;
}

} // namespace drill

#endif
