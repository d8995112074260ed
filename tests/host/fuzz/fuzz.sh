#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds zorbd's fuzz targets with clang and runs each of them for a while.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)

usage() {
    cat <<'TEXT'
Usage: tests/host/fuzz/fuzz.sh [SECONDS]
Builds the fuzz targets in build/fuzz (clang, AddressSanitizer, UndefinedBehaviorSanitizer) and runs each for
SECONDS (default: 300). What they learn is kept in build/fuzz/corpus; an input that fails is written to
build/fuzz/findings, and goes to tests/host/fuzz/seeds once it is mended.
Exit code: 0 nothing found; 1 something found; 2 wrong argument; 3 clang is missing; 4 it could not be built.
TEXT
}

fail() {
    echo "fuzz.sh: $2" >&2
    exit "$1"
}

[[ ${1:-} =~ ^(-h|--help)$ ]] && usage && exit 0
seconds=${1:-300}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail 2 "'$seconds' is no number of seconds above 0"
command -v clang++ >/dev/null || fail 3 "clang++ is missing: apt-get install clang"

readonly build=$root/build/fuzz
cmake -G Ninja -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVARNEL_FUZZ=ON \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DSANITIZE=address,undefined >"$root/build/fuzz.log" 2>&1 &&
    cmake --build "$build" --target fuzz_dispatcher fuzz_http >>"$root/build/fuzz.log" 2>&1 ||
    fail 4 "cannot build; see build/fuzz.log"

# run <target>: what it says goes to build/fuzz/<target>.log.
run() {
    mkdir -p "$build/corpus/$1" "$build/findings"
    "$build/bin/fuzz_$1" -max_total_time="$seconds" -max_len=8192 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$1-" "$build/corpus/$1" "$root/tests/host/fuzz/seeds/$1" \
        >"$build/$1.log" 2>&1 || fail 1 "$1: something found; see $build/$1.log"
    echo "fuzz.sh: $1: nothing found in $(sed -n 's/^stat::number_of_executed_units: *//p' "$build/$1.log") runs"
}

run dispatcher
run http
