#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# On a bare system that has the packages in ./packages: the whole path works with what apt installs (packages), or
# docs/authors.md can be followed word for word (tutorial).
# Usage: packages_test.sh <folder with the packages> <script of tests/install/inside>
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
in_bare_root "$folder" "tests/install/inside/$2.sh"
