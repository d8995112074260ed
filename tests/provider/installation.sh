# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# A stand-in for an installation of OpenSplice DDS with its RMI layer: the published declarations, a generator that
# writes more of them, and empty files in the places of the libraries. Nothing of it can be linked or run. To be
# sourced at the root of the sources.

# make_installation <folder> <omniidl>
make_installation() {
    local root=$PWD name
    mkdir -p "$1"/{bin,lib,etc/idl}
    cp -R tests/provider/include "$1/"
    cp ddsrmi/idl/dds_rmi.idl "$1/etc/idl/"
    for name in ddsrmi dcpssacpp ddskernel; do
        : >"$1/lib/lib$name.so"
    done
    cat >"$1/bin/rmipp" <<TEXT
#!/bin/sh
PYTHONDONTWRITEBYTECODE=1 exec "$2" -p"$root/tests/provider" -p"$root/ddsrmi/generator" -bpublished_be "\$@"
TEXT
    printf '#!/bin/sh\nexit 0\n' >"$1/bin/idlpp"
    chmod +x "$1"/bin/*
}
