#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Two builds in different folders give the same files. Usage: reproducible_test.sh <build folder> <jobs>
# The build folder is one of the two; the other is made of a copy of the sources.
set -euo pipefail
build=$(cd "$1" && pwd)
jobs=$2
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh
source tests/install/build_settings.sh
source tests/install/sources.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
copy=$folder/a/folder/with/a/longer/name
mkdir -p "$copy"
copy_sources "$copy"

mapfile -t options < <(build_settings "$build")

# What a cache gives back would prove nothing.
export CCACHE_DISABLE=1
if ! { cmake -G Ninja -S "$copy" -B "$copy/other" "${options[@]}" -DVARNEL_TESTS=OFF &&
    cmake --build "$copy/other" -j "$jobs"; } >"$folder/log" 2>&1; then
    tail -n 50 "$folder/log"
    exit 1
fi

# With the same prefix, which the services' files name.
install_to() { DESTDIR=$2 cmake --install "$1" --prefix /usr >/dev/null; }
install_to "$build" "$folder/one"
install_to "$copy/other" "$folder/other"

expect "files are installed" test "$(find "$folder/one" -type f | wc -l)" -gt 10
expect "the installed files are the same" diff --recursive --brief "$folder/one" "$folder/other"
finish
