# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Runs commands in a bare Debian system: what every system has, apt, and nothing else. To be sourced at the root of the
# sources; it brings what it needs.

source tools/messages.sh
source tools/packages.sh
source tools/sysroot.sh
source tools/loopback_domain.sh

# in_bare_root <folder> <command...>: the folder is copied into the root there, under its own name, and the command runs
# in it; the system is gone afterwards. Root, or a user who may make user namespaces.
in_bare_root() {
    local folder=$1 copy=/${1##*/} domain sources command
    shift
    # shellcheck disable=SC2154 # from sysroot.sh
    sources=$(debian_sources) || { complain "apt has no source for $debian_release" && return 1; }
    # In there, the locks of the machine's other DDS domains cannot be seen.
    reserve_domain || return 1
    printf -v command '%q ' env DEBIAN_FRONTEND=noninteractive VARNEL_DDS_DOMAIN="$domain" "$@"
    # shellcheck disable=SC2016 # mmdebstrap's own shell replaces them
    mmdebstrap --quiet --variant=apt --customize-hook="mkdir \"\$1\"$(printf %q "$copy")" \
        --customize-hook="sync-in $(printf %q "$folder") $(printf %q "$copy")" \
        --customize-hook="chroot \"\$1\" sh -c $(printf %q "cd $(printf %q "$copy") && exec $command")" \
        "$debian_release" /dev/null - <<<"$sources"
}
