#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Follows docs/authors.md with the packages that lie in ./packages. To be run in a bare root, by root.
# shellcheck disable=SC2317 # the tutorial calls sudo
set -euo pipefail
source tools/messages.sh
source tools/loopback_domain.sh
source tests/install/tutorial.sh

folder=$(mktemp -d)
trap stop_tutorial EXIT
sudo() { "$@"; }

follow_tutorial "$folder" bare /usr/share/doc/zorb-dev/examples
test -e /usr/local/lib/libthermostat_plugin.openrpc.json
