#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Install, upgrade, remove and purge on a running system: a container with a systemd of its own and no network but its
# loopback interface. Where such a container cannot be started, the same steps are taken in a chroot, without services,
# and a line says so. Asks for root by sudo. Usage: services_test.sh <folder with the packages> <build folder>
set -euo pipefail
made=$(cd "$1" && pwd) build=$(cd "$2" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/messages.sh
source tools/packages.sh
source tools/sysroot.sh
source tests/install/older_packages.sh

readonly packages=(libddsrmi1 libzorb1 libvarnelrmi varnelrpc zorbd varnelde)
readonly patience=300 # seconds, for everything that is done in the container
folder=$(mktemp -d)
trap 'as_root rm -rf "$folder"' EXIT
root=$folder/root

# What our packages depend on, but for one another.
dependencies() {
    local name
    for name in "${packages[@]}"; do
        dpkg-deb --field "$made/${name}_"*.deb Depends
    done | tr ',' '\n' | sed 's/(.*//; s/ //g' | sort -u | grep -vxF "$(printf '%s\n' "${packages[@]}")" | paste -sd,
}

make_root() {
    debian_sources >"$folder/sources"
    as_root mmdebstrap --quiet --variant=apt --include="systemd-sysv,curl,$(dependencies)" "$debian_release" "$root" \
        "$folder/sources"
}

# The folder /trial there: the packages, what is installed without packages, and the steps.
equip_root() {
    local name
    mkdir -p "$folder"/trial/{older,packages}
    for name in "${packages[@]}"; do
        cp "$made/${name}_"*.deb "$folder/trial/packages/"
    done
    make_older_packages "$made" "$folder/trial/older"
    DESTDIR=$folder/trial/without_packages cmake --install "$build" --prefix /usr/local >/dev/null
    cp tests/system/assertions.sh tests/install/inside/{services.sh,trial.service} "$folder/trial/"
    as_root cp -R --no-preserve=ownership "$folder/trial" "$root/"
    as_root systemctl --quiet --root="$root" enable /trial/trial.service
}

boot() {
    local options=(--quiet --boot --private-network --link-journal=no)
    # Where no systemd runs, there is nobody to tell of the container.
    [[ -d /run/systemd/system ]] || options+=(--register=no --keep-unit)
    as_root timeout --kill-after=30 $patience systemd-nspawn "${options[@]}" --directory="$root" \
        </dev/null >"$folder/console" 2>&1
}

make_root
equip_root
code=0
boot || code=$?
if [[ -s $root/trial/report ]]; then
    cat "$root/trial/report"
    exit "$code"
fi
note "NOT TRIED: the services under systemd. A container with systemd does not start here; its last words:"
tail -n 5 "$folder/console"
as_root chroot "$root" sh -c 'cd /trial && exec ./services.sh chroot'
