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
    local root folder="build/$1/clang-tidy"
    root=$(pwd -P)
    mkdir -p "$folder"
    # clang does not know this option of gcc.
    sed 's/ -fno-gnu-unique//g' "build/$1/compile_commands.json" >"$folder/compile_commands.json"
    local sources="^$root/(bench|ddsrmi|examples|framework|host|plugin|server|tests|zorbctl)/" count begin=$SECONDS
    count=$(grep -cE "^  \"file\": \"${sources#^}" "$folder/compile_commands.json")
    note "clang-tidy looks at $count files, $(nproc) at a time, which takes longest of all"
    run-clang-tidy -quiet -p "$folder" "$sources" ||
        { complain "clang-tidy has found something (.clang-tidy names the checks)"; return 1; }
    note "clang-tidy took $(((SECONDS - begin) / 60)) minutes"
}
