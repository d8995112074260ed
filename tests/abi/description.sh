# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# The description of the binary interface of libzorb.so.1, by abidw of the Debian package abigail-tools. To be sourced at
# the root of the sources.

# shellcheck disable=SC2034 # for those who source it
readonly described=tests/abi/libzorb.so.1.abi

# describe <library>: its own functions and the types that they take, as the public headers show them.
describe() {
    abidw --headers-dir framework/include --drop-private-types --suppressions tests/abi/own_names.abignore \
        --exported-interfaces-only --drop-undefined-syms --no-elf-needed --no-show-locs --no-corpus-path \
        --no-comp-dir-path --no-parameter-names --no-write-default-sizes --type-id-style hash "$1"
}
