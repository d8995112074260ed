# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Keys, certificates and tokens for a server and a host on this machine. To be sourced, with messages.sh,
# loopback_domain.sh and rpc.sh.

# make_trusted_peers <folder> <zorbd>: DDS Security for the peers "host" and "server" in $trust/peers, and TLS and a token
# for zorbd, with authorities made for this alone. Leaves zorbd's options in $trusted_options.
make_trusted_peers() {
    trust=$1/trust
    # shellcheck disable=SC2154 # domain is set by reserve_domain
    reserve_domain && trust/zorb-trust init "$trust" &&
        trust/zorb-trust add "$trust" server --role server --domain "$domain" &&
        trust/zorb-trust add "$trust" host --role host --domain "$domain" || return 1
    note "made a certificate for HTTPS, and a token that may call every method of the plug-in"
    make_https_certificate "$trust" || return 1
    "$2" token add demo --file "$trust/tokens" >"$trust/token" || return 1
    # shellcheck disable=SC2034 # for those who source it
    trusted_options=(--tls-certificate "$trust/tls.pem" --tls-key "$trust/tls.key" --token-file "$trust/tokens")
    # The secret stands in a file: everyone could read it in the list of processes.
    (umask 077 && printf 'oauth2-bearer = "%s"\n' "$(<"$trust/token")" >"$trust/curl")
    # shellcheck disable=SC2034 # for rpc.sh
    rpc_scheme=https rpc_options=(--cacert "$trust/tls_ca.pem" --config "$trust/curl")
    # shellcheck disable=SC2034 # the same
    ctl_options=(--ca-file "$trust/tls_ca.pem" --token-file "$trust/token")
}

# use_peer <name>: for the processes started from now on.
use_peer() { export CYCLONEDDS_URI="file://$trust/peers/$1/cyclonedds.xml"; }

# make_https_certificate <folder>
make_https_certificate() (
    set -e
    umask 077
    cd "$1"
    {
        openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 30 -subj "/CN=authority of the demo" \
            -keyout tls_ca.key -out tls_ca.pem &&
            openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=localhost \
                -addext "subjectAltName=IP:127.0.0.1,DNS:localhost" -keyout tls.key -out tls.csr &&
            openssl x509 -req -in tls.csr -CA tls_ca.pem -CAkey tls_ca.key -days 30 -copy_extensions copyall -out tls.pem
    } >openssl.log 2>&1 || { cat openssl.log >&2 && exit 1; }
)
