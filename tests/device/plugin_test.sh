#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The plug-in is what a device takes: small, with one exported function, asking for known libraries only.
# Usage: plugin_test.sh <plug-in> <readelf> <strip>
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
plugin=$1 strip=$3
export READELF=$2
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh
source tests/device/elf.sh

readonly most_bytes=$((96 * 1024))
# What it is built on, then what these and the compiler bring. The last two are the C library's too.
readonly known_libraries='libzorb.so.1 libVarnelRMI.so libddsrmi.so.1
    libstdc++.so.6 libgcc_s.so.1 libm.so.6 libc.so.6
    ld-linux-armhf.so.3 ld-linux-x86-64.so.2'

is_small() {
    local stripped bytes
    stripped=$(mktemp)
    "$strip" -o "$stripped" "$plugin"
    bytes=$(stat --format=%s "$stripped")
    rm "$stripped"
    echo "stripped, the plug-in has $bytes bytes"
    ((bytes <= most_bytes))
}

exports_the_factory_alone() {
    [[ $(elf_exports "$plugin") == RPCHandler ]] || { elf_exports "$plugin" && return 1; }
}

needs_known_libraries_only() {
    local library unknown=0
    for library in $(elf_needed "$plugin"); do
        [[ " ${known_libraries//$'\n'/ } " == *" $library "* ]] || { echo "it needs $library" && unknown=1; }
    done
    return "$unknown"
}

needs() { elf_needed "$plugin" | grep -qx "$1"; }

is_for_hard_float_arm() {
    [[ $(elf_class "$plugin") == ELF32 && $(elf_flags "$plugin") == *'Version5 EABI, hard-float ABI'* ]]
}

expect "it has at most $most_bytes bytes" is_small
expect "it exports RPCHandler and nothing else" exports_the_factory_alone
expect "it needs only known libraries" needs_known_libraries_only
for library in libzorb.so.1 libVarnelRMI.so libddsrmi.so.1; do
    expect "it needs $library" needs $library
done
if [[ $(elf_machine "$plugin") == ARM ]]; then
    expect "it is EABI5 with hard float" is_for_hard_float_arm
fi
finish
