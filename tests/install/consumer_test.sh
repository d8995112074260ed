#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What is installed is enough for plug-ins and services of others: with find_package(zorb) and with pkg-config.
# Usage: consumer_test.sh <build folder> <C++ compiler, with its options> [emulator...]
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
build=$(cd "$1" && pwd)
read -ra compiler <<<"$2"
emulator=("${@:3}")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/messages.sh
source tools/processes.sh
source tools/loopback_domain.sh
source tools/rpc.sh
source tests/system/assertions.sh
source tests/install/build_settings.sh

folder=$(mktemp -d)
clean_up() {
    stop_all
    rm -rf "$folder"
}
trap clean_up EXIT

# or_show <command...>: what it says is shown when it fails.
or_show() { "$@" >"$folder/log" 2>&1 || { cat "$folder/log" && exit 1; }; }

# Moved after the installation, to see that no file names its place.
or_show cmake --install "$build" --prefix "$folder/first"
mv "$folder/first" "$folder/installed"
installed=$folder/installed
greeter=$PWD/examples/greeter/greeter_plugin.cpp

mapfile -t options < <(build_settings "$build")
or_show cmake -G Ninja -S tests/install/consumer -B "$folder/consumer" "${options[@]}" \
    -DCMAKE_PREFIX_PATH="$installed" -DCMAKE_FIND_ROOT_PATH="$installed" -DGREETER_SOURCE="$greeter"
or_show cmake --build "$folder/consumer"

mapfile -t flags < <(PKG_CONFIG_PATH='' PKG_CONFIG_LIBDIR="$installed/lib/pkgconfig" \
    pkg-config --cflags --libs zorb | xargs -n 1)
or_show "${compiler[@]}" -std=c++11 -shared -fPIC -o "$folder/libgreeter_by_pkg_config.so" "$greeter" "${flags[@]}"

export LD_LIBRARY_PATH=$installed/lib
use_loopback_domain "$folder"

# answers <plug-in>: zorbd loads it and passes a call on to it.
answers() {
    start "$folder/zorbd.log" "${emulator[@]}" "$installed/bin/zorbd" --listen 127.0.0.1:0 --plugin "$1"
    follow "$folder/zorbd.log" $!
    await_line 60 'ready on http://(127\.0\.0\.1:[1-9][0-9]*)/' || { cat "$folder/zorbd.log" && return 1; }
    local answer address=${BASH_REMATCH[1]}
    # It may have been bound before, so from the first line again.
    unfollow
    follow "$folder/zorbd.log" "${started[-1]}"
    await_line 60 ' is bound ' || { cat "$folder/zorbd.log" && return 1; }
    answer=$(rpc_send "$address" "$(rpc_request 1 greet '{"name": "Ada"}')")
    stop_all
    contains "$answer" '"result":"Hello, Ada!"'
}

reads_the_thermometer() {
    contains "$(timeout 120 "${emulator[@]}" "$folder/consumer/thermometer" 2>&1)" "the attic has 31.5 degrees"
}

expect "a plug-in by find_package works" answers "$folder/consumer/libgreeter_plugin.so"
expect "a plug-in by pkg-config works" answers "$folder/libgreeter_by_pkg_config.so"
expect "an interface library by find_package works" reads_the_thermometer
finish
