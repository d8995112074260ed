// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_EMULATOR_H
#define TESTS_SUPPORT_EMULATOR_H

#include <string>
#include <vector>

namespace test_support {

/// `command` as this machine can run it: behind the emulator of a cross build when its program is one of that
/// build, unchanged otherwise (a script, a program of the machine itself).
std::vector<std::string> under_emulator(const std::vector<std::string>& command);

} // namespace test_support

#endif
