# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Makes the folder with the device's headers and libraries that the cross build needs, from the package registry
# that apt is configured for. To be sourced, with messages.sh and packages.sh.

# shellcheck disable=SC2034 # for those who source it
# shellcheck disable=SC2034 # for those who source it
readonly debian_release=bookworm

# debian_sources: apt's sources of the release, as lines of a sources.list. They are the main archive alone: a
# release keeps its interfaces, so what is built against it also runs with later fixes.
debian_sources() {
    # shellcheck disable=SC2016 # apt's own placeholders
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        grep " $debian_release " | sort -u
}

# make_relative <folder>: links that name the root point inside the folder, for linkers and emulators alike.
make_relative() {
    local link
    find "$1" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
        ln -snfr "$1$(readlink "$link")" "$link"
    done
}

# extract_packages <architecture> <folder> <package>... [-- <source>]: their content and that of what they depend on,
# also from one more source in the form of sources.list.
extract_packages() {
    local architecture=$1 folder=$2 names='' sources
    shift 2
    sources=$(debian_sources) || { complain "apt has no source for $debian_release; see /etc/apt/sources.list" && return 1; }
    while (($# > 0)) && [[ $1 != -- ]]; do
        names+=${names:+,}$1
        shift
    done
    sources+=${2:+$'\n'$2}
    mmdebstrap --quiet --architectures="$architecture" --variant=extract --include="$names" \
        "$debian_release" - - <<<"$sources" | tar --extract --directory="$folder" --exclude='./dev/*' --exclude='./var/*'
}

# ensure_sysroot <architecture>: in build/sysroot-<architecture>; made anew when the list of its packages changes.
ensure_sysroot() {
    local folder=build/sysroot-$1 packages
    mapfile -t packages < <(packages_for sysroot)
    [[ -f $folder/packages && $(<"$folder/packages") == "${packages[*]}" ]] && return 0
    heading "Making the $1 sysroot in $folder"
    rm -rf "$folder" "$folder.partial"
    mkdir -p "$folder.partial"
    if ! extract_packages "$1" "$folder.partial" "${packages[@]}"; then
        complain "cannot make $folder; the reason is above"
        return 1
    fi
    make_relative "$folder.partial" && echo "${packages[*]}" >"$folder.partial/packages" &&
        mv "$folder.partial" "$folder"
}
