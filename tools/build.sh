# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Configures and builds a preset of CMakePresets.json in build/<preset>. To be sourced, with messages.sh.

use_ccache() {
    if command -v ccache >/dev/null; then
        export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
}

# configure <preset> [cmake option...]: quiet unless it fails.
configure() {
    local preset=$1 log="build/$1/configure.log"
    mkdir -p "build/$preset"
    use_ccache
    if ! cmake --preset "$@" >"$log" 2>&1; then
        cat "$log" >&2
        complain "cannot configure the preset '$preset'; the report above is also in $log"
        return 1
    fi
}

# make_packages <preset>: Debian packages of what has been built, in build/<preset>/packages. The same sources give the
# same packages.
make_packages() {
    local log="build/$1/packages.log" time
    rm -rf "build/$1/packages"
    time=$(git log -1 --format=%ct 2>/dev/null || echo 0)
    if ! SOURCE_DATE_EPOCH=$time cmake -E chdir "build/$1" cpack >"$log" 2>&1; then
        cat "$log" >&2
        complain "cannot make packages; the report above is also in $log"
        return 1
    fi
}

# build <preset> [target...]: every target when none is named.
build() {
    local preset=$1
    shift
    cmake --build "build/$preset" ${1:+--target "$@"} ||
        { complain "the build of the preset '$preset' failed"; return 1; }
}
