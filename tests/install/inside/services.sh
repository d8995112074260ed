#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The life of the packages on a system: installed, configured, upgraded, removed, purged. To be run in a bare root, in the
# folder that services_test.sh has equipped. Usage: services.sh systemd|chroot
# shellcheck disable=SC2317 # the checks are called by expect
set -euo pipefail
# shellcheck source=tests/system/assertions.sh
source ./assertions.sh
system=$1
export DEBIAN_FRONTEND=noninteractive
readonly patience=60 # seconds
readonly own_port=8099 other_domain=7

quietly() { "$@" >/tmp/log 2>&1 || { cat /tmp/log && exit 1; }; }

# As unattended upgrades do: a changed configuration file stays, and the new one is put beside it.
apt_get() { quietly apt-get -y -o Dpkg::Options::=--force-confold "$@"; }

step() { echo "   $*"; }

# with_services <command...>: only where they can run.
with_services() { [[ $system != systemd ]] || "$@"; }

files() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /run -o -path /tmp -o -path /trial -o -path /var/tmp \
        -o -path /var/log -o -path /var/cache -o -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/lib/systemd/timers \
        \) -prune -o -print | sort
}

dangling_links() { find /etc /lib /usr /var/lib -xtype l | sort; }

same_as() { diff "$1" - || return 1; }

# answers <port>: the plug-in has found its service, and a call gets through to it.
answers() {
    local deadline=$((SECONDS + patience))
    until curl --silent --fail "http://127.0.0.1:$1/healthz" >/tmp/health; do
        ((SECONDS < deadline)) || { cat /tmp/health && journalctl --no-pager -n 20 && return 1; }
        sleep 0.2
    done
    contains "$(zorbctl --url "http://127.0.0.1:$1/" call network_get_info --wait)" "async_network_get_info returns"
}

is_active() { systemctl --quiet is-active "$1"; }
is_stopped() { ! systemctl --quiet is-active "$1"; }
main_process() { systemctl show --property MainPID --value "$1"; }

# The ports of DDS follow from the number of the domain.
has_ports_of_domain() {
    local first=$((7400 + 250 * $1)) port
    while read -r port; do
        ((16#$port < first || 16#$port >= first + 250)) || return 0
    done < <(awk 'NR > 1 { sub(/.*:/, "", $2); print $2 }' /proc/net/udp)
    return 1
}

is_upgraded() { [[ $(dpkg-query -W -f '${Version}' "$1") == "$(dpkg-deb -f packages/"$1"_*.deb Version)" ]]; }

files >/tmp/files_before
dangling_links >/tmp/links_before

step "installing the older packages"
apt_get install ./older/*.deb
expect "nothing is started before somebody says so" is_stopped zorbd

start_services() {
    systemctl enable --quiet zorbd.service varnelde.service
    systemctl start varnelde zorbd
    expect "the services answer as they are installed" answers 8080
    expect "they are in DDS domain 0" has_ports_of_domain 0
}
with_services start_services

step "changing the configuration"
sed -i "s/8080/$own_port/" /etc/zorbd/zorbd.conf
sed -i "s/Id=\"any\"/Id=\"$other_domain\"/" /etc/{zorbd,varnelde}/cyclonedds.xml
echo 'VARNELDE_OPTIONS="--node 00:1A:2B:3C:4D:5E"' >>/etc/default/varnelde
cp -r --parents /etc/zorbd/{zorbd.conf,cyclonedds.xml} /etc/varnelde/cyclonedds.xml /etc/default/varnelde /tmp/

use_configuration() {
    systemctl restart varnelde zorbd
    expect "the services answer with the changed configuration" answers "$own_port"
    expect "they are in the DDS domain that it names" has_ports_of_domain "$other_domain"
    expect "varnelde has the options that it names" contains "$(journalctl --no-pager -u varnelde)" 'ready: service'
    expect "its network has the node that it names" \
        contains "$(zorbctl --url "http://127.0.0.1:$own_port/" call network_get_node_list --wait)" 'returns: 1'
    for service in zorbd varnelde; do
        main_process "$service" >"/tmp/$service.before"
    done
}
with_services use_configuration

step "upgrading"
apt_get install ./packages/*.deb
for package in libddsrmi1 libzorb1 libvarnelrmi varnelrpc zorbd varnelde; do
    expect "$package is upgraded" is_upgraded $package
done
for file in zorbd/zorbd.conf zorbd/cyclonedds.xml varnelde/cyclonedds.xml default/varnelde; do
    expect "the changed $file stays" cmp /tmp/etc/$file /etc/$file
    expect "the new $file is beside it" test -e /etc/$file.dpkg-dist
done
expect "the unchanged configuration is the new one" test "$(grep -c older /etc/default/zorbd)" == 0
expect "no link dangles" same_as /tmp/links_before < <(dangling_links)

see_upgraded_services() {
    expect "the upgraded services answer" answers "$own_port"
    for service in zorbd varnelde; do
        expect "$service has been started again" test "$(main_process "$service")" != "$(<"/tmp/$service.before")"
    done
}
with_services see_upgraded_services

step "removing"
apt_get remove zorbd varnelde
for service in zorbd varnelde; do
    with_services expect "$service is stopped" is_stopped $service
    expect "the program $service is gone" test ! -e /usr/bin/$service
    expect "the unit of $service is gone" test ! -e /lib/systemd/system/$service.service
done
expect "the configuration is still there" cmp /tmp/etc/zorbd/zorbd.conf /etc/zorbd/zorbd.conf

step "purging"
apt_get purge zorbd varnelde varnelrpc libvarnelrmi libzorb1 libddsrmi1
expect "no file is left" same_as /tmp/files_before < <(files)
expect "no link dangles" same_as /tmp/links_before < <(dangling_links)

step "installing without packages, by cmake --install"
cp -a without_packages/. /
ldconfig
start_installed_services() {
    systemctl daemon-reload
    systemctl start varnelde zorbd
    expect "services that cmake --install has installed answer" answers 8080
}
with_services start_installed_services
finish
