#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What is missing of an OpenSplice installation is told in one message: what was looked for, and where.
# Usage: installation_test.sh <omniidl>
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh
source tests/provider/installation.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset OSPL_HOME

# configure [option...]: leaves in $said what it has said, without line breaks. False when it succeeds.
configure() {
    rm -rf "$folder/build"
    if said=$(cmake -G Ninja -S . -B "$folder/build" -DRMI_PROVIDER=opensplice -DVARNEL_TESTS=OFF "$@" 2>&1); then
        return 1
    fi
    said=$(tr -s '\n ' ' ' <<<"$said")
}

expect "no installation is refused" configure
expect "it says what is not set" contains "$said" "OSPL_HOME does not name its folder"

expect "a folder that is not there is refused" configure -DOSPL_HOME="$folder/nowhere"
for name in ddsrmi.h os_stdlib.h dds_rmi.idl rmipp idlpp dcpssacpp; do
    expect "it says that $name is missing" contains "$said" " $name, looked for in $folder/nowhere/"
done

make_installation "$folder/installation" "$1"
rm "$folder/installation/lib/libddsrmi.so"
expect "an incomplete installation is refused" configure -DOSPL_HOME="$folder/installation"
expect "it says what is missing" contains "$said" "the library ddsrmi, looked for in $folder/installation/lib"
expect "it says nothing of what is there" test "${said/rmipp, looked/}" == "$said"

make_installation "$folder/installation" "$1"
printf '#!/bin/sh\necho no licence; exit 7\n' >"$folder/installation/bin/rmipp"
expect "a generator that fails is refused" configure -DOSPL_HOME="$folder/installation"
expect "it says what the generator says" contains "$said" "no licence"

printf '#!/bin/sh\nexit 0\n' >"$folder/installation/bin/rmipp"
expect "a generator that makes nothing is refused" configure -DOSPL_HOME="$folder/installation"
expect "it says what was not made" contains "$said" "has not made VarnelRMI_InterfaceProxy.h"
finish
