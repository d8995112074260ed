#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Every program and library that is installed is hardened. Usage:
#   hardening_test.sh <compile_commands.json> <readelf> <program or library>...
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
commands=$1
export READELF=$2
shift 2
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh
source tests/device/elf.sh

has_no_text_relocations() { ! elf_dynamic "$1" | grep -q TEXTREL; }
is_position_independent() { [[ $(elf_type "$1") == DYN ]]; }
has_read_only_relocations() { elf_segments "$1" | grep -q GNU_RELRO; }
is_bound_at_start() { elf_dynamic "$1" | grep -qE 'BIND_NOW|\(FLAGS_1\).* NOW'; }
has_no_writable_code() { ! elf_segments "$1" | grep -qE '(GNU_STACK|LOAD) .* RWE '; }
checks_its_stack() { elf_imports "$1" | grep -qx __stack_chk_fail; }

for file; do
    name=$(basename "$file")
    expect "$name has no text relocations" has_no_text_relocations "$file"
    expect "$name is position independent" is_position_independent "$file"
    expect "$name has read-only relocations" has_read_only_relocations "$file"
    expect "$name is bound when it starts" is_bound_at_start "$file"
    expect "$name has no memory that is writable and executable" has_no_writable_code "$file"
    expect "$name checks its stack" checks_its_stack "$file"
done

# In a file, fortification shows only where a checked function is called; the commands tell of all sources.
product_commands() { grep '"command":' "$commands" | grep -vE ' -o (tests|bench)/'; }

without() { product_commands | grep -vE -- "$1" | sed 's/.* -c /without it: /; s/",*$//'; }
all_have() { [[ -z $(without "$1") ]] || { without "$1" && return 1; }; }

expect "there are commands to look at" test "$(product_commands | wc -l)" -gt 50
expect "all sources are fortified" all_have ' -D_FORTIFY_SOURCE=2 '
expect "all sources are optimised, which fortification needs" all_have ' -O[123] '
expect "all sources have stack protection" all_have ' -fstack-protector-strong '
finish
