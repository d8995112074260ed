#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What is installed is enough for the services and plug-ins of others: docs/authors.md, followed from an installation
# below a prefix. Usage: tutorial_test.sh <build folder> <C++ compiler, with its options> [emulator...]
set -euo pipefail
build=$(cd "$1" && pwd)
read -ra compiler <<<"$2"
emulator=("${@:3}")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/messages.sh
source tools/loopback_domain.sh
source tests/install/build_settings.sh
source tests/install/tutorial.sh

folder=$(mktemp -d)
trap 'stop_tutorial; rm -rf "$folder"' EXIT

# or_show <command...>: what it says is shown when it fails.
or_show() { "$@" >"$folder/log" 2>&1 || { cat "$folder/log" && exit 1; }; }

# Moved after the installation, to see that no file names its place.
or_show cmake --install "$build" --prefix "$folder/first"
mv "$folder/first" "$folder/installed"
installed=$folder/installed

# Programs of the installation, which the page calls by their names.
mkdir "$folder/bin"
for name in zorbd zorbctl; do
    printf '#!/bin/sh\nexec %s "$@"\n' "${emulator[*]} $installed/bin/$name" >"$folder/bin/$name"
    chmod +x "$folder/bin/$name"
done
export PATH=$folder/bin:$PATH LD_LIBRARY_PATH=$installed/lib
export CXX="${compiler[*]}" PKG_CONFIG_PATH='' PKG_CONFIG_LIBDIR=$installed/lib/pkgconfig

# Configures for the machine that the build folder is for.
mapfile -t settings < <(build_settings "$build")
cmake() {
    if [[ $1 != -B ]]; then
        command cmake "$@"
    else
        env -u CXX cmake "$@" "${settings[@]}" -DCMAKE_PREFIX_PATH="$installed" -DCMAKE_FIND_ROOT_PATH="$installed"
    fi
}

# Without the front end of the generator, CMake names its package.
names_the_missing_generator() {
    local said
    ! said=$(command cmake -DCMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH=OFF -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF \
        -P "$installed/share/zorb/cmake/RmiInterfaceLibrary.cmake" 2>&1) && [[ $said == *"apt-get install omniidl"* ]]
}

shows_the_example "$folder"
names_the_missing_generator

# A client of the sensor network.
or_show cmake -B "$folder/client" -S tests/install/network_client
or_show cmake --build "$folder/client"

mkdir "$folder/work"
cd "$folder/work"
follow_tutorial "$folder" installed "$installed/share/doc/zorb-dev/examples" \
    "s#^\./\(build\|out\)/#${emulator[*]:+${emulator[*]} }&#"
