# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# The checks of the sources that need no run. To be sourced, with messages.sh.

cxx_files() { git ls-files -- '*.h' '*.cpp'; }

# Every C++ file of the project reads as .clang-format says.
check_format() {
    local files report
    mapfile -t files < <(cxx_files)
    report=$(clang-format --dry-run --Werror "${files[@]}" 2>&1) && return 0
    complain "these files differ from .clang-format; put each right with clang-format -i FILE:"
    sed -n 's/:[0-9]*:[0-9]*: error: .*//p' <<<"$report" | sort -u >&2
    return 1
}

check_scripts() {
    local files
    mapfile -t files < <(git grep -lE '^(#!.*bash|# shellcheck shell=bash)')
    shellcheck --external-sources "${files[@]}" || { complain "shellcheck has found something"; return 1; }
}

# check_tidy <preset>: every source of the project that this build compiles passes .clang-tidy. Generated sources
# lie in the build folder and are not looked at.
check_tidy() {
    local root
    root=$(pwd -P)
    run-clang-tidy -quiet -p "build/$1" "^$root/(bench|ddsrmi|framework|host|plugin|server|tests)/" ||
        { complain "clang-tidy has found something (.clang-tidy names the checks)"; return 1; }
}
