#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# libzorb.so.1 still has every function that plug-ins of earlier builds may use, and its types are laid out as they were.
# New functions are allowed. Usage: abi_test.sh <library>
set -euo pipefail
library=$1
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh
source tests/abi/description.sh

now=$(mktemp --suffix=.abi)
trap 'rm "$now"' EXIT
describe "$library" >"$now"

expect "the library is described" grep -q 'zeb::api\|KX_RPCHandler' "$now"
expect "it does for plug-ins what $described says (see docs/compatibility.md)" abidiff --no-added-syms "$described" "$now"
finish
