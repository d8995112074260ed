#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The plug-in, the framework, the server and the host compile against the published declarations of the RMI layer
# alone, so they build on any provider. Usage: published_interface_test.sh <folder to work in> <omniidl>
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
mkdir -p "$1"
folder=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh
source tests/provider/installation.sh

make_installation "$folder/installation" "$2"

# Nothing can be linked, so linking does nothing.
nothing='<CMAKE_COMMAND> -E true'
configure() {
    cmake -G Ninja -S . -B "$folder/build" -DRMI_PROVIDER=opensplice -DOSPL_HOME="$folder/installation" \
        -DVARNEL_TESTS=OFF -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_CREATE_SHARED_LIBRARY="$nothing" -DCMAKE_CXX_LINK_EXECUTABLE="$nothing"
}
compile() { cmake --build "$folder/build" --target VarnelRMI zorb varnelrpc varnelde zorbd; }

quietly() { "$@" >"$folder/log" 2>&1 || { cat "$folder/log" && return 1; }; }

does_not_compile() {
    ! c++ -std=c++17 -fsyntax-only -I"$folder/installation/include" "$1" >"$folder/log" 2>&1 &&
        grep -q "DDS_Service_Impl" "$folder/log"
}

expect "the build on OpenSplice is configured" quietly configure
expect "every source keeps to the published names" quietly compile
expect "another name is noticed" does_not_compile tests/provider/unlisted_name.cpp
finish
