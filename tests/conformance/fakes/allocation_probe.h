// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_ALLOCATION_PROBE_H
#define TESTS_CONFORMANCE_ALLOCATION_PROBE_H

#include <cstddef>
#include <string>
#include <vector>

// The test program's operator new and delete. What is allocated while something records is filled with
// garbage, noted, and can be made to fail.

namespace conformance {

/// Each byte of that garbage.
constexpr unsigned char garbage = 0xAA;

/// Lets the nth recorded allocation from now on (1 is the next) throw std::bad_alloc; 0 lets all succeed.
void fail_allocation(std::size_t nth);

/// The texts in the arrays that were allocated while something recorded and have not been freed, oldest
/// first.
std::vector<std::string> arrays_left();

/// How many objects (not arrays) were allocated while something recorded and have not been freed.
std::size_t objects_left();

/// Frees the arrays that are left.
void free_arrays_left();

/// Whether `array` is one of the arrays that are left.
bool is_left(const void* array);

} // namespace conformance

#endif
