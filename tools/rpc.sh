# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# JSON-RPC requests to the host daemon. To be sourced.

# rpc_request <id> <method> <params or nothing>
rpc_request() {
    printf '{"jsonrpc": "2.0", "id": %d, "method": "%s"%s}' "$1" "$2" "${3:+, \"params\": $3}"
}

# How zorbd is reached, and the further options for it of curl and of zorbctl.
# shellcheck disable=SC2034 # for those who source it
rpc_scheme=http rpc_options=() ctl_options=()

# rpc_send <address> <request>: gives the response, or what curl has to say against it.
rpc_send() {
    curl --silent --show-error --noproxy '*' --max-time 30 "${rpc_options[@]}" --json "$2" "$rpc_scheme://$1/" 2>&1
}
