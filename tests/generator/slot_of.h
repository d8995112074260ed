// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_GENERATOR_SLOT_OF_H
#define TESTS_GENERATOR_SLOT_OF_H

#include <cstddef>
#include <cstring>

/// Where a virtual function stands in its class's table of virtual functions, counted in functions from some
/// fixed point: its member pointer begins with the offset in the table.
template <class Function>
std::ptrdiff_t slot_of(Function function)
{
    std::ptrdiff_t offset = 0;
    static_assert(sizeof function >= sizeof offset, "a member pointer begins with an offset");
    std::memcpy(&offset, &function, sizeof offset);
    return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
}

#endif
