# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Configures and builds a preset of CMakePresets.json in build/<preset>. To be sourced, with messages.sh.

# with_ccache <command...>: a command that sets up a build, which then compiles with ccache where that is installed. Only
# that command is told: what the tests of an installation build on a bare system has no ccache.
with_ccache() {
    local launcher=()
    ! command -v ccache >/dev/null || launcher=(CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache)
    env "${launcher[@]}" "$@"
}

# configure <preset> [cmake option...]: quiet unless it fails.
configure() {
    local preset=$1 log="build/$1/configure.log"
    mkdir -p "build/$preset"
    if ! with_ccache cmake --preset "$@" >"$log" 2>&1; then
        cat "$log" >&2
        complain "cannot configure the preset '$preset'; the report above is also in $log"
        return 1
    fi
}

# make_packages <preset>: Debian packages of what has been built, in build/<preset>/packages, and those with debugging
# symbols in its folder debug. The same sources give the same packages.
make_packages() {
    local built=$PWD/build/$1 log="build/$1/packages.log" folder="build/$1/packages" for_target=() sysroot=''
    if [[ $1 == armhf ]]; then
        for_target=(dpkg-architecture -aarmhf -c) sysroot=$PWD/build/sysroot-armhf
    fi
    rm -rf "$folder"
    mkdir -p "$folder/work"
    cp -R debian "$folder/work/"
    if ! (cd "$folder/work" && "${for_target[@]}" debian/rules binary BUILT="$built" SYSROOT="$sysroot") >"$log" 2>&1; then
        cat "$log" >&2
        complain "cannot make packages; the report above is also in $log"
        return 1
    fi
    rm -r "$folder/work"
    mkdir "$folder/debug"
    mv "$folder"/*-dbgsym_*.deb "$folder/debug/"
}

# check_packages <folder>: Debian's own check finds no error and no warning; what is meant to be so is explained in
# debian/*.lintian-overrides.
check_packages() {
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$1"/{,debug/}*.deb ||
        { complain "lintian has found something; 'lintian-explain-tags NAME' tells what it means"; return 1; }
}

# build <preset> [target...]: every target when none is named.
build() {
    local preset=$1
    shift
    cmake --build "build/$preset" ${1:+--target "$@"} ||
        { complain "the build of the preset '$preset' failed"; return 1; }
}
