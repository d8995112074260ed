# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Packages of an older release, for tests of the upgrade. To be sourced.

readonly older_version=1.0.2 # the present ones' without the Debian revision

# Each configuration file has another text than today's.
change_configuration() {
    local file
    while IFS= read -r file; do
        case $file in
        *.xml) sed -i '1a <!-- older -->' "$file" ;;
        *) sed -i '1i # older' "$file" ;;
        esac
    done < <(find "$1"/*/etc -type f)
}

# make_older_packages <folder> <result folder>: laid out as when the package of the plug-in held all libraries. The
# programs are today's.
make_older_packages() {
    local work package library
    work=$(mktemp -d)
    for package in varnelrpc zorbd varnelde; do
        dpkg-deb --raw-extract "$1/${package}_"*.deb "$work/$package"
        rm "$work/$package/DEBIAN/md5sums"
        sed -i "s/^Version: .*/Version: $older_version/; s/varnelrpc (= [^)]*)/varnelrpc (= $older_version)/
                s/, lib\(ddsrmi1\|zorb1\|varnelrmi\) ([^)]*)//g" "$work/$package/DEBIAN/control"
    done
    sed -i 's/^Depends: /&varnelrpc, /' "$work/varnelde/DEBIAN/control"
    for library in libddsrmi1 libzorb1 libvarnelrmi; do
        dpkg-deb --fsys-tarfile "$1/${library}_"*.deb |
            tar --extract --directory="$work/varnelrpc" --exclude='./usr/share/*'
    done
    change_configuration "$work"
    for package in varnelrpc zorbd varnelde; do
        dpkg-deb --root-owner-group --build "$work/$package" "$2/" >/dev/null
    done
    rm -r "$work"
}
