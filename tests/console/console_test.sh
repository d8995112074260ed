#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The console in headless Chromium. Usage: console_test.sh <build folder> [unittest's options and test names]
set -euo pipefail
build=$(cd "$1" && pwd)
shift
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/messages.sh
source tools/loopback_domain.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
use_loopback_domain "$folder"
BUILD=$build FOLDER=$folder /usr/bin/python3 tests/console/console_test.py "$@"
