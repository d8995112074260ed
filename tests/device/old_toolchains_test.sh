#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The plug-in and the headers that plug-ins include compile without a warning as C++11, which is all that compilers of
# devices know, and as C++17, with gcc and clang. Usage: old_toolchains_test.sh <folder of the generated headers>
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
generated=$1
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Each header comes first once, and so has all that it needs.
headers=$(cd framework/include && find . -name '*.h' | sort)
for header in $headers ddsrmi.h os_stdlib.h; do
    name=$(tr -c 'a-zA-Z0-9\n' _ <<<"$header")
    printf '#include <%s>\n' "${header#./}" >"$folder/$name.cpp"
done
expect "there are headers to look at" test "$(wc -w <<<"$headers")" -ge 6

compiles() {
    "$1" "-std=$2" -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Werror \
        -Iframework/include -Iddsrmi/include -Iplugin -I"$generated" "${@:3}"
}

for compiler in g++ clang++; do
    for standard in c++11 c++17; do
        expect "$compiler takes the plug-in and the headers as $standard" \
            compiles $compiler $standard plugin/*.cpp "$folder"/*.cpp
    done
done
finish
