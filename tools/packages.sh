# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Installs the Debian packages of packaging/packages.txt. To be sourced, with messages.sh.

# packages_for <purpose>...: the names of the packages that these purposes need.
packages_for() {
    local name purposes wanted
    while read -r name purposes; do
        [[ $name != \#* ]] || continue
        for wanted in "$@"; do
            [[ " $purposes " == *" $wanted "* ]] && echo "$name" && break
        done
    done <packaging/packages.txt
    return 0
}

# A package whose triggers have not run yet, because an installation is going on, can be used all the same.
is_installed() {
    case $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) in
    installed | triggers-awaited | triggers-pending) return 0 ;;
    *) return 1 ;;
    esac
}

# missing_packages <purpose>...
missing_packages() {
    local name
    for name in $(packages_for "$@"); do
        is_installed "$name" || echo "$name"
    done
}

as_root() {
    if ((EUID == 0)); then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

# Turns apt-get's report into one line for every package that is set up.
package_progress() {
    local line
    while IFS= read -r line; do
        case $line in
        'Setting up '*) note "set up ${line#Setting up }" ;;
        'Need to get '*) note "$line" ;;
        E:* | Err:*) complain "$line" ;;
        esac
    done
}

run_apt_get() { as_root apt-get -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 "$@" 2>&1 | package_progress; }

# ensure_packages <purpose>...: installs what is missing. Fails with a message when it cannot.
ensure_packages() {
    if ! command -v dpkg-query >/dev/null; then
        note "This is no Debian system: install by hand what packaging/packages.txt lists."
        return 0
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]} == 0)) && return 0
    heading "Installing ${#missing[@]} packages: ${missing[*]}"
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        complain "packages are missing and there is no sudo; as root: apt-get install ${missing[*]}"
        return 1
    fi
    if ! { note "reading the package lists" && run_apt_get update -q &&
        run_apt_get install -y --no-install-recommends "${missing[@]}"; }; then
        complain "cannot install packages; try: apt-get update && apt-get install ${missing[*]}"
        return 1
    fi
}

# require_packages <purpose>...: only looks.
require_packages() {
    command -v dpkg-query >/dev/null || return 0
    local missing
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]} == 0)) && return 0
    complain "packages are missing; as root: apt-get install ${missing[*]}"
    return 1
}
