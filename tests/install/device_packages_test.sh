#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The device's packages name all that they need: apt unpacks them and what they depend on, and with that alone the
# whole path works under an emulator. Usage: device_packages_test.sh <folder with the packages>
set -euo pipefail
made=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/messages.sh
source tools/packages.sh
source tools/sysroot.sh

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder"/{packages,root,programs,programs/bin}
cp "$made"/*.deb "$folder/packages/"
(cd "$folder/packages" && dpkg-scanpackages --multiversion . >Packages 2>"$folder/log") || { cat "$folder/log" && exit 1; }
extract_packages armhf "$folder/root" varnelrpc zorbd varnelde -- "deb [trusted=yes] copy:$folder/packages ./"
make_relative "$folder/root"

for name in zorbd zorbctl varnelde; do
    printf '#!/bin/sh\nexec qemu-arm -L "%s" "%s" "$@"\n' "$folder/root" "$folder/root/usr/bin/$name" \
        >"$folder/programs/bin/$name"
    chmod +x "$folder/programs/bin/$name"
done
ln -s "$folder/root/usr/lib" "$folder/programs/lib"
./demo --programs "$folder/programs" --patience 60
