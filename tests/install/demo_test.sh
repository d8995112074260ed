#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# ./demo, in a copy of the sources on a bare system, sets everything up by itself and succeeds.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/bare_root.sh
source tests/install/sources.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
copy_sources "$folder"
in_bare_root "$folder" ./demo
