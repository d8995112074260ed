#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the packages that lie in ./packages on this system, and uses them. To be run in a bare root.
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
source tests/system/assertions.sh

quietly() { "$@" >/tmp/log 2>&1 || { cat /tmp/log && exit 1; }; }

# Every library that an installed program or library asks for is there.
all_libraries_found() { ! ldd /usr/bin/zorbd /usr/bin/varnelde /usr/lib/libvarnelrpc_1.0.2.so | grep 'not found'; }

runs_the_demo() { ./demo --programs /usr || { cat /tmp/varnel-demo.*/*.log && return 1; }; }

# Its port may be taken on the machine, whose network this system shares.
serves_with_its_configuration() {
    export CYCLONEDDS_URI=file:///etc/zorbd/cyclonedds.xml
    timeout 5 zorbd --config /etc/zorbd/zorbd.conf --listen 127.0.0.1:0 >/tmp/zorbd.log 2>&1 || true
    contains "$(</tmp/zorbd.log)" 'ready on http://127.0.0.1:' && contains "$(</tmp/zorbd.log)" 'VarnelDE_Server'
}

makes_a_plugin() {
    g++ -shared -fPIC -o /tmp/libgreeter.so examples/greeter/greeter_plugin.cpp -lzorb
}

quietly apt-get install -y --no-install-recommends ./packages/{libddsrmi1,libzorb1,libvarnelrmi,varnelrpc,zorbd,varnelde}_*.deb curl
expect "all libraries are found" all_libraries_found
expect "the whole path works" runs_the_demo
expect "zorbd serves with the configuration that it comes with" serves_with_its_configuration

# With keys and certificates that the installed command makes.
runs_the_protected_demo() { ./demo --trust --programs /usr || { cat /tmp/varnel-demo.*/*.log && return 1; }; }

makes_a_good_peer() {
    zorb-trust init /tmp/trust && zorb-trust add /tmp/trust gateway --role host &&
        zorb-trust check /tmp/trust/peers/gateway/cyclonedds.xml
}

quietly apt-get install -y --no-install-recommends ./packages/zorb-trust_*.deb
expect "zorb-trust equips a peer" makes_a_good_peer
expect "the whole path works with DDS Security and HTTPS" runs_the_protected_demo

quietly apt-get install -y --no-install-recommends ./packages/zorb-dev_*.deb g++
expect "a plug-in is built with the development package" makes_a_plugin

finish
