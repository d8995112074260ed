# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# What the commands at the root say to people. To be sourced.

# shellcheck disable=SC2034 # for those who source it
if [[ -t 1 ]]; then
    bold=$'\e[1m' green=$'\e[32m' red=$'\e[31m' plain=$'\e[0m'
else
    bold='' green='' red='' plain=''
fi

heading() { printf '%s== %s%s\n' "$bold" "$*" "$plain"; }
note() { printf '   %s\n' "$*"; }

# complain <message>: to standard error, under the name of the command.
complain() { printf '%s%s: %s%s\n' "$red" "${0##*/}" "$*" "$plain" >&2; }

# fail <exit code> <message>
fail() {
    local code=$1
    shift
    complain "$*"
    exit "$code"
}

# needs_value <option> [value]...: what is left of a command line.
needs_value() { (($# > 1)) || fail 2 "$1 needs a value; see ./${0##*/} --help"; }
