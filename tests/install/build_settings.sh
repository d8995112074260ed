# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# For tests that build for the same machine as a given build folder. To be sourced.

# build_settings <build folder>: options of cmake, one a line.
build_settings() {
    local name value
    for name in CMAKE_BUILD_TYPE CMAKE_TOOLCHAIN_FILE DEVICE_SYSROOT CMAKE_CXX_COMPILER CMAKE_C_COMPILER \
        CMAKE_CXX_FLAGS; do
        value=$(sed -n "s/^$name:[A-Z]*=//p" "$1/CMakeCache.txt")
        [[ -z $value ]] || echo "-D$name=$value"
    done
}
