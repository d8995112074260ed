#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# zorbctl against real programs: its commands, its output, its exit codes, completion, its manual page.
# Usage: zorbctl_test.sh <build folder>
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
(umask 077 && echo a-token-of-some-length >"$folder/token")
start "$folder/zorbd.log" "$build/bin/zorbd" --listen 127.0.0.1:0 --unix-socket "$folder/socket" \
    --token-file "$folder/token" --plugin "$build/lib/libvarnelrpc_1.0.2.so"
follow "$folder/zorbd.log" $!
expect "zorbd listens" await_line 60 'ready on (http://127\.0\.0\.1:[0-9]+/)'
readonly url=${BASH_REMATCH[1]}
export ZORBCTL_SOCKET=$folder/socket
PATH=$build/bin:$PATH

expect "code of a plug-in that waits" exits_with 5 zorbctl health
expect "what waits is told" contains "$(zorbctl health || true)" 'libvarnelrpc_1.0.2.so: waits for its service'
start "$folder/varnelde.log" "$build/bin/varnelde"
readonly server=$!
until zorbctl health >/dev/null; do :; done

readonly node=02:00:00:00:00:01
expect "list names methods and keys" contains "$(zorbctl list | tr -s ' ')" 'node_set_config mac_addr newCfg Configure a node'
expect "list for programs" contains "$(zorbctl --output json list)" '"name":"network_commission"'
described=$(zorbctl describe node_set_config_revert)
expect "describe tells types" contains "$(tr -s ' ' <<<"$described")" 'duration integer, required'
expect "describe tells the reply" contains "$described" 'async_node_set_config_revert returns: NUMBER'
expect "describe gives an example" contains "$described" "zorbctl call node_set_config_revert mac_addr=$node"
expect "health" contains "$(zorbctl health)" 'bound, 14 methods'

expect "call answers" test "$(zorbctl call network_get_info)" = 0
expect "call waits for its line" contains "$(zorbctl call network_commission mac_addr_list=$node --wait)" \
    'async_net_commission returns: 1    (number of nodes)'
expect "numbers keep their type" contains "$(zorbctl call node_set_config_revert mac_addr=$node newCfg=a=1 duration=30 --wait)" \
    'async_node_set_config_revert returns: 1'
expect "a whole params object" contains "$(zorbctl --output json call node_get_config --json "[\"$node\"]" --wait)" \
    '"line":"async_node_get_config returns: 1"'
expect "a failed reply has its meaning" contains "$(zorbctl call node_get_data mac_addr=02:00:00:00:00:99 --wait || true)" \
    '-2    (unknown_node'
expect "a wrong address is named" contains "$(zorbctl call node_get_data mac_addr=x 2>&1 || true)" '"mac_addr" is not valid'

expect "code of a failed reply" exits_with 1 zorbctl call node_get_data mac_addr=02:00:00:00:00:99 --wait
expect "code of an error" exits_with 1 zorbctl call node_get_data mac_addr=x
expect "code of a wrong type" exits_with 2 zorbctl call node_set_config_revert mac_addr=$node newCfg=a=1 duration=soon
expect "code of a word without =" exits_with 2 zorbctl call node_get_data $node
expect "code of an unknown method" exits_with 2 zorbctl describe nobody
expect "code of an unknown option" exits_with 2 zorbctl --nothing list
for seconds in nan inf -1 0 1e999 soon ''; do
    expect "code of --timeout '$seconds'" exits_with 2 zorbctl --timeout "$seconds" list
done
for count in 0 -1 nan 99999999999999999999999; do
    expect "code of --count $count" exits_with 2 zorbctl watch --count "$count"
done
expect "code without a host" exits_with 3 zorbctl --unix-socket "$folder/nowhere" list

watched=$(zorbctl watch --after 0 --filter "returns: 1" --count 2)
expect "watch filters" test "$(grep -c 'returns: 1$' <<<"$watched")" = 2
expect "watch for programs" contains "$(zorbctl --output json watch --after 0 --count 1)" '{"event":"line","event_id":"1","time":'

unset ZORBCTL_SOCKET
expect "a token is needed over TCP" exits_with 3 zorbctl --url "$url" list
expect "the token's file" zorbctl --url "$url" --token-file "$folder/token" health
ZORBCTL_TOKEN=a-token-of-some-length expect "the token's variable" zorbctl --url "$url" health

export ZORBCTL_SOCKET=$folder/socket
source zorbctl/completion/zorbctl
# completed <line>: what the shell would offer.
completed() {
    COMP_LINE=$1 COMP_POINT=${#1}
    read -ra COMP_WORDS <<<"$1"
    [[ $1 != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _zorbctl
    echo "${COMPREPLY[*]}"
}
expect "commands complete" test "$(completed 'zorbctl wa')" = watch
expect "methods complete" test "$(completed 'zorbctl call test_node_s')" = test_node_set_sensor_data
expect "keys complete" test "$(completed 'zorbctl call test_node_create ')" = 'mac_addr= type='

# The application that docs/host.md shows, as it is told to be called, on a host without a token.
start "$folder/open.log" "$build/bin/zorbd" --listen 127.0.0.1:0 --plugin "$build/lib/libvarnelrpc_1.0.2.so"
unfollow
follow "$folder/open.log" $!
expect "another zorbd listens" await_line 60 'ready on (http://127\.0\.0\.1:[0-9]+)/'
readonly open_url=${BASH_REMATCH[1]}
until env -u ZORBCTL_SOCKET zorbctl --url "$open_url" health >/dev/null; do :; done
expect "the application gets its line" contains \
    "$(no_proxy='*' python3 examples/wait_for_line/wait_for_line.py "$open_url" node_get_data "{\"mac_addr\": \"$node\"}" \
        'async_node_get_data returns: ' 2>&1)" "'result': 0, 'id': 1}
async_node_get_data returns: 1"
metrics=$(curl --silent --noproxy '*' "$open_url/metrics")
expect "promtool takes the metrics" promtool check metrics <<<"$metrics"
expect "calls are counted" contains "$metrics" 'zorbd_calls_total{method="node_get_data",code="0"} 1'

# A call that takes too long, on a host with a plug-in of the tests.
start "$folder/stuck.log" "$build/bin/zorbd" --unix-socket "$folder/stuck" --call-timeout 0.2 \
    --plugin "$build/tests/host/plugins/libserved_methods.so"
mkfifo "$folder/fifo"
until zorbctl --unix-socket "$folder/stuck" health >/dev/null 2>&1; do :; done
expect "a call that takes too long is told of" contains \
    "$(zorbctl --unix-socket "$folder/stuck" call hold --json "{\"fifo\": \"$folder/fifo\"}" 2>&1 || true)" 'hold: no answer within 0.2 s'
expect "code of a call that takes too long" exits_with 5 zorbctl --unix-socket "$folder/stuck" health
expect "what takes too long is told" contains "$(zorbctl --unix-socket "$folder/stuck" health || true)" 'calls that take too long: 1'
: >"$folder/fifo"

kill -STOP "$server"
until grep -q '^State:.T' "/proc/$server/status"; do :; done
expect "code of a reply that does not come" exits_with 4 zorbctl --timeout 1 call network_get_info --wait
kill -CONT "$server"

# Every option of the help stands in the manual page, and every option of the page in the help.
help=$(zorbctl --help; for command in list describe call watch health; do zorbctl $command --help; done)
options_in() { grep -oE -- '--[a-z-]+' | sort -u; }
expect "the manual page has the options" diff <(options_in <<<"$help") <(sed 's/\\-/-/g' docs/man/zorbctl.1 | options_in)
finish
