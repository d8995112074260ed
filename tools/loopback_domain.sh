# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# A DDS domain of one's own on the loopback interface. To be sourced, with messages.sh.

# reserve_domain: gives its number in $domain. The lock files are those of the tests, the same for the whole machine;
# the processes started from here inherit the lock, so the number stays theirs until the last of them ends.
# Who has reserved one already hands it over in VARNEL_DDS_DOMAIN.
reserve_domain() {
    local lock
    domain=${VARNEL_DDS_DOMAIN:-}
    [[ -z $domain ]] || return 0
    for domain in {1..99}; do
        { exec {lock}>>"/tmp/varnel-dds-domain-$domain.lock"; } 2>/dev/null || continue
        flock --nonblock "$lock" && return 0
        exec {lock}>&-
    done
    complain "no DDS domain is free: all of /tmp/varnel-dds-domain-*.lock are taken"
    return 1
}

# use_loopback_domain <folder>: for all processes started from now on; the configuration file goes to the folder.
use_loopback_domain() {
    reserve_domain || return 1
    sed "s/<Domain Id=\"any\">/<Domain Id=\"$domain\">/" packaging/cyclonedds-loopback.xml >"$1/cyclonedds.xml"
    export CYCLONEDDS_URI="file://$1/cyclonedds.xml"
}
