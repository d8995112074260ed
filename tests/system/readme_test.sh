#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What README.md tells to type works: its first call by hand, its DDS configurations, the options that it names.
# Usage: readme_test.sh <build folder>
set -euo pipefail
build=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tools/messages.sh
source tools/processes.sh
source tools/loopback_domain.sh
source tests/system/assertions.sh

folder=$(mktemp -d)
trap 'stop_all; rm -rf "$folder"' EXIT
use_loopback_domain "$folder"
readonly bound=30 # seconds
# Nobody else has the domain, so nobody else has the port either.
readonly port=$((28000 + domain))

# fenced <language> <heading>: the lines of such blocks in that section.
fenced() {
    awk -v opening="\`\`\`$1" -v heading="## $2" '
        !block && /^## / { section = ($0 == heading) }
        /^```/ { wanted = !block && section && $0 == opening; block = !block; next }
        wanted' README.md
}

# Only what must be this run's own is replaced: the build folder, the port and the domain.
as_typed() {
    sed "s#build/release#$build#g; s#127\.0\.0\.1:8080#127.0.0.1:$port#g
         s#file://\$PWD/packaging/cyclonedds-loopback\.xml#$CYCLONEDDS_URI#
         s#^curl #curl --silent --show-error --noproxy '*' --max-time 60 #"
}

type_command() {
    case $1 in
    *' &') eval "start $folder/${#started[@]}.log ${1% &}" ;;
    curl*)
        expect "answer to: $1" contains "$(eval "$1" 2>&1)" '"result":0'
        take_log_lines
        ;;
    *) eval "$1" ;;
    esac
}

# The two lines of a call go to $logged; only when they have come is the next call made, so that their order is sure.
logged=()
take_log_lines() {
    local pattern line=''
    for pattern in '^CALL RPC ' ' returns: '; do
        await_line $bound "$pattern" || break
        logged+=("$line")
    done
}

type_first_call() {
    local command typed=()
    mapfile -t typed < <(fenced sh "A first call" | as_typed)
    for command in "${typed[@]}"; do
        [[ $command == curl* && -z ${follower:-} ]] && wait_for_host
        type_command "$command"
    done
}

wait_for_host() {
    follow "$folder/1.log" "${started[1]}"
    expect "the host becomes bound" await_line $bound 'is bound and offers [0-9]+ methods'
}

expect_log() { expect "zorbd writes what README.md says" diff <(fenced '' "A first call") <(printf '%s\n' "${logged[@]}"); }

# Each configuration, with this machine's loopback interface for the network, lets a server start.
try_configurations() {
    local count index
    count=$(fenced xml "A server on another machine" | grep -c '^<CycloneDDS')
    expect "README.md has configurations" test "$count" -gt 0
    for ((index = 1; index <= count; ++index)); do
        fenced xml "A server on another machine" | awk -v wanted=$index '/^<CycloneDDS/ { ++number } number == wanted' |
            sed "s/eth0/lo/; s/192\.0\.2\.10/127.0.0.1/; s/Domain Id=\"0\"/Domain Id=\"$domain\"/" >"$folder/$index.xml"
        start "$folder/configuration.log" env CYCLONEDDS_URI="file://$folder/$index.xml" "$build/bin/varnelde"
        follow "$folder/configuration.log" $!
        expect "varnelde starts with configuration $index" await_line $bound '^ready'
        stop_all
    done
}

check_options() {
    local command option
    while read -r command option; do
        expect "$command knows $option" contains "$($command --help)" "$option"
    done < <(grep -oE '\./(demo|check) --[a-z-]+' README.md | sort -u)
}

type_first_call
expect_log
stop_all
try_configurations
check_options
finish
