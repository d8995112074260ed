#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The packages are installed by apt on a bare system, where the whole path then works.
# Usage: packages_test.sh <folder with the packages>
set -euo pipefail
made=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/bare_root.sh
source tests/install/sources.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
copy_sources "$folder"
mkdir "$folder/packages"
cp "$made"/*.deb "$folder/packages/"
in_bare_root "$folder" tests/install/inside/packages.sh
